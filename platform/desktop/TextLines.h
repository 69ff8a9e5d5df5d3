// Walking over the lines of a configuration file.
#pragma once

#include <algorithm>
#include <string_view>

namespace kbx {

/// The text without blanks and tabs at both ends.
inline std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t start = std::min(text.find_first_not_of(kBlanks), text.size());
  return text.substr(start, text.find_last_not_of(kBlanks) + 1 - start);
}

/// Calls `visit` with each line, trimmed; empty ones and comments ("#") are left out.
template <class Visit>
void forEachLine(std::string_view text, Visit visit) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    const std::string_view line = trimmed(text.substr(at, end - at));
    if (!line.empty() && line.front() != '#') visit(line);
    at = end + 1;
  }
}

}  // namespace kbx
