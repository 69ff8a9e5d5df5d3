// ASCII: the letters that mail's own syntax is made of.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace kbx {

constexpr char lowercase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; }
constexpr bool isASCIIDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isASCIIAlphanumeric(char c) {
  return isASCIIDigit(c) || (lowercase(c) >= 'a' && lowercase(c) <= 'z');
}
/// Blank, tab or part of a line end.
constexpr bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

inline std::string lowercase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](char c) { return lowercase(c); });
  return result;
}

/// Without regard to the case of ASCII letters.
inline bool isSameWord(std::string_view first, std::string_view second) {
  return std::ranges::equal(
      first, second, {}, [](char c) { return lowercase(c); }, [](char c) { return lowercase(c); });
}

inline bool startsWithWord(std::string_view text, std::string_view start) {
  return text.size() >= start.size() && isSameWord(text.substr(0, start.size()), start);
}

inline std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

/// The value of a hexadecimal digit, or -1.
constexpr int hexValue(char c) {
  if (isASCIIDigit(c)) return c - '0';
  const char letter = lowercase(c);
  return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

}  // namespace kbx
