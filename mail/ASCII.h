// ASCII: the letters that mail's own syntax is made of.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "platform/text/ASCII.h"

namespace kbx {

/// Blank, tab or part of a line end.
constexpr bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

inline std::string lowercase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), asciiLower);
  return result;
}

/// Without regard to the case of ASCII letters.
inline bool isSameWord(std::string_view first, std::string_view second) {
  return std::ranges::equal(first, second, {}, asciiLower, asciiLower);
}

inline bool startsWithWord(std::string_view text, std::string_view start) {
  return text.size() >= start.size() && isSameWord(text.substr(0, start.size()), start);
}

inline std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace kbx
