#include "host/search/WordScanner.h"

#include <algorithm>
#include <array>

#include "host/search/QueryFault.h"

namespace kbx {
namespace {

constexpr std::array<std::string_view, 6> kQuotes{"\"", "“", "”", "„", "«", "»"};
constexpr std::array<std::string_view, 8> kBlanks{" ",  "\t", "\n",     "\r",
                                                  "\v", "\f", "\u00A0", "\u3000"};

/// Whether neither a blank nor a quote begins with the byte.
bool isPlain(char byte) { return byte > ' ' && byte < 0x7F && byte != '"'; }

template <std::size_t N>
std::size_t lengthOfAny(const std::array<std::string_view, N>& marks, std::string_view text) {
  for (std::string_view mark : marks)
    if (text.starts_with(mark)) return mark.size();
  return 0;
}

}  // namespace

std::size_t WordScanner::quoteLength(std::size_t place) const {
  return lengthOfAny(kQuotes, _text.substr(std::min(place, _text.size())));
}

std::size_t WordScanner::blankLength(std::size_t place) const {
  return lengthOfAny(kBlanks, _text.substr(std::min(place, _text.size())));
}

void WordScanner::skipBlanks() {
  while (const std::size_t length = blankLength(_place)) _place += length;
}

std::string_view WordScanner::peekWord() const {
  std::size_t end = _place;
  while (end < _text.size() && _text[end] != '(' && _text[end] != ')' &&
         (isPlain(_text[end]) || (quoteLength(end) == 0 && blankLength(end) == 0)))
    ++end;
  return _text.substr(_place, end - _place);
}

bool WordScanner::isAtWord(std::string_view word) const {
  if (!_text.substr(std::min(_place, _text.size())).starts_with(word)) return false;
  const std::size_t end = _place + word.size();
  return end == _text.size() || _text[end] == '(' || _text[end] == ')' || quoteLength(end) > 0 ||
         blankLength(end) > 0;
}

std::string_view WordScanner::takePhrase() {
  const std::size_t opening = _place, begin = _place + quoteLength(_place);
  for (_place = begin; _place < _text.size(); ++_place) {
    const std::size_t length = quoteLength(_place);
    if (length == 0) continue;
    const auto phrase = _text.substr(begin, _place - begin);
    _place += length;
    return phrase;
  }
  throw QueryFault("this quote is never closed", opening, begin - opening,
                   std::string(_text) + "\"");
}

}  // namespace kbx
