// The name of the executable that a process runs, from the process file system.
#pragma once

#include <string>

namespace kbx {

/// The executable's file name; empty when it cannot be read (an ended or a foreign process).
///
/// processFolder  the folder of the process, such as "/proc/self"
std::string executableName(const std::string& processFolder);

}  // namespace kbx
