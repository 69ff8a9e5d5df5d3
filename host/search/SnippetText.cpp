#include "host/search/SnippetText.h"

#include <array>

namespace kbx {
namespace {

constexpr std::array<std::string_view, 5> kBlanks{"\u00A0", "\u2028", "\u2029", "\u0085", "\u3000"};
constexpr std::size_t kBeginningLength = 160;  // bytes

std::size_t blankLength(std::string_view text) {
  if (text[0] == ' ' || (text[0] >= '\t' && text[0] <= '\r')) return 1;
  for (std::string_view blank : kBlanks)
    if (text.starts_with(blank)) return blank.size();
  return 0;
}

}  // namespace

Snippet snippetOf(std::string_view passage) {
  Snippet snippet;
  std::string& text = snippet.text;
  bool isBlank = true, isMarked = false;
  while (!passage.empty()) {
    std::size_t length = 1;
    if (passage.starts_with(kSnippetBegin)) {
      length = kSnippetBegin.size();
      if (!isMarked) snippet.marks.emplace_back(text.size(), text.size());
      isMarked = true;
    } else if (passage.starts_with(kSnippetEnd)) {
      length = kSnippetEnd.size();
      if (isMarked) snippet.marks.back().second = text.size();
      isMarked = false;
    } else if (const std::size_t blank = blankLength(passage)) {
      length = blank;
      if (!isBlank) text += ' ';
      isBlank = true;
    } else {
      text += passage[0];
      isBlank = false;
    }
    passage.remove_prefix(length);
  }
  if (isMarked) snippet.marks.back().second = text.size();
  return snippet;
}

Snippet beginningOf(std::string_view text, bool goesOn) {
  Snippet snippet = snippetOf(text);
  snippet.marks.clear();
  std::string& line = snippet.text;
  if (line.size() > kBeginningLength) {
    std::size_t end = line.rfind(' ', kBeginningLength);
    if (end == std::string::npos) end = kBeginningLength;
    while (end > 0 && (static_cast<unsigned char>(line[end]) & 0xC0) == 0x80) --end;
    line.resize(end);
    goesOn = true;
  }
  if (goesOn) line += "…";
  return snippet;
}

}  // namespace kbx
