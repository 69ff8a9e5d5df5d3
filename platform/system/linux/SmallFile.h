// Reading the small files in which the kernel answers questions.
#pragma once

#include <string>

namespace kbx {

/// The first 64 kB of a file; empty when it cannot be read.
std::string readSmallFile(const std::string& path);

}  // namespace kbx
