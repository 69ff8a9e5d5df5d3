// The operating system's words for its error numbers.
#pragma once

#include <string>

namespace kbx {

/// The text of an `errno` value in the C locale, such as "No such file or directory". Any thread.
std::string systemMessage(int number);

}  // namespace kbx
