// ProcessList: the processes that /proc shows.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kbx {

/// The executables' names of all processes whose real user is `user`, in the order of /proc. A
/// process that ends meanwhile may be missing.
///
/// root  the folder in which /proc is looked for; empty for the real one
std::vector<std::string> processNamesOfUser(const std::string& root, std::uint32_t user);

}  // namespace kbx
