// Symbolic links in a path, followed through the file system.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Export.h"

namespace kbx {

/// An absolute path without links, "." and ".."; ".." behind a link leaves the folder that the
/// link leads to. What does not exist stays as it is, and so does what cannot be looked into.
///
/// Absent when more than 40 links have to be followed, as in a loop of links.
KBX_PLATFORM std::optional<std::string> pathByResolvingLinks(std::string_view path);

}  // namespace kbx
