// The operating system's words for its error numbers.
#pragma once

#include <cstdint>
#include <string>

namespace kbx {

/// The text of an `errno` value in the C locale, such as "No such file or directory"; of any
/// other number, "Unknown error: N". Any thread.
std::string systemMessage(std::int64_t number);

}  // namespace kbx
