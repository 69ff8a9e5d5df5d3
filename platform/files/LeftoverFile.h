// LeftoverFile: files that a process began to write and, having died, will not finish.
#pragma once

#include <string>

#include "platform/Export.h"

namespace kbx {

/// Removes the file at the path if it is a leftover: a regular file of this user with one name that
/// nothing has changed for an hour. Whether it was removed. Safe from any thread and process: of
/// several that find the same leftover one removes it, and none removes what came in its place.
KBX_PLATFORM bool removeLeftover(const std::string& path);

}  // namespace kbx
