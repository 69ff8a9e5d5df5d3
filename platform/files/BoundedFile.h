// Small files that the system keeps for everybody to read.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/Export.h"

namespace kbx {

/// All bytes of a regular file, in the file system's form of its path. Absent when it cannot be
/// read, is something else, or has more bytes than the limit. Never waits for a pipe.
KBX_PLATFORM std::optional<std::string> contentsOfFile(const std::string& path, std::size_t limit);

}  // namespace kbx
