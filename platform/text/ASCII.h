// ASCII: the letters and digits that file formats and protocols are written in, whatever the
// locale.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace kbx {

constexpr bool isASCIILetter(char c) { return static_cast<std::uint8_t>((c | 0x20) - 'a') < 26; }
constexpr bool isASCIIDigit(char c) { return static_cast<std::uint8_t>(c - '0') < 10; }
constexpr bool isASCIIAlphanumeric(char c) { return isASCIILetter(c) || isASCIIDigit(c); }
constexpr char asciiLower(char c) {
  return static_cast<std::uint8_t>(c - 'A') < 26 ? static_cast<char>(c | 0x20) : c;
}

/// The value of a digit in a base up to 16; -1 for what is none.
constexpr int digitValue(char c, int base) {
  if (isASCIIDigit(c)) return c - '0' < base ? c - '0' : -1;
  const char lower = asciiLower(c);
  return base == 16 && lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// lower  has no capitals
inline bool equalsIgnoringASCIICase(std::string_view text, std::string_view lower) {
  return std::ranges::equal(text, lower, {}, asciiLower);
}

/// lower  has no capitals
inline bool endsIgnoringASCIICase(std::string_view text, std::string_view lower) {
  return text.size() >= lower.size() &&
         equalsIgnoringASCIICase(text.substr(text.size() - lower.size()), lower);
}

}  // namespace kbx
