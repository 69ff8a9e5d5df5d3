// PathList: paths that stand in a file instead of on the command line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/objects/NSError.h"

namespace kbx {

/// The paths in a list, in order; empty ones are left out.
///
/// separator  what stands behind each path; behind the last one it may be missing
///
/// A path "-" is that of a file with this name.
std::vector<std::string> pathsIn(std::string_view list, char separator);

/// Adds the paths that the file or pipe lists, or standard input for "-". False when it cannot be
/// read; then the error says why.
bool addPathsFrom(const std::string& file, char separator, std::vector<std::string>& paths,
                  Ref<NSError>* error);

}  // namespace kbx
