// The folder that relative paths start from.
#pragma once

#include <string>

namespace kbx {

/// The absolute path of the process's working folder; empty when it was removed or cannot be read.
std::string workingFolder();

}  // namespace kbx
