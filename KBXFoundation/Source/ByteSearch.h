// ByteSearch: the first place of a pattern in a run of bytes.
#pragma once

#include <cstddef>
#include <string_view>

namespace kbx {

/// The offset of the first `pattern` in `text`; text.npos when it does not occur. An empty pattern
/// is found at 0. Allocates nothing; time grows with the text alone, whatever both contain.
std::size_t findBytes(std::string_view text, std::string_view pattern) noexcept;

/// The same by means of the C library alone. What findBytes() is on processors for which it has
/// nothing better.
std::size_t findBytesPortably(std::string_view text, std::string_view pattern) noexcept;

}  // namespace kbx
