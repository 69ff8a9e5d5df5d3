// SystemFiles: where the shared libraries of the system lie, and what they read.
#pragma once

#include <string>
#include <vector>

namespace kbx {

/// Files and folders. Nothing in them is the user's own, and no password is among them.
std::vector<std::string> systemFiles();

}  // namespace kbx
