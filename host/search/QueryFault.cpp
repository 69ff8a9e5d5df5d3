#include "host/search/QueryFault.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>

#include "host/console/Escaping.h"

namespace kbx {
namespace {

constexpr std::size_t kShownBefore = 100, kShownBehind = 60;  // bytes around the place

std::size_t columnsOf(UChar32 character) {
  const auto category = U_GET_GC_MASK(character);
  if (category & (U_GC_MN_MASK | U_GC_ME_MASK)) return 0;
  if (character == 0x200B || character == 0x200C || character == 0x200D) return 0;
  const int syllable = u_getIntPropertyValue(character, UCHAR_HANGUL_SYLLABLE_TYPE);
  if (syllable == U_HST_VOWEL_JAMO || syllable == U_HST_TRAILING_JAMO) return 0;
  const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_FULLWIDTH || width == U_EA_WIDE ? 2 : 1;
}

bool continuesCharacter(char byte) { return (static_cast<std::uint8_t>(byte) & 0xC0) == 0x80; }

/// The next place at or behind this one that is not within a character.
std::size_t boundary(std::string_view text, std::size_t place) {
  while (place < text.size() && continuesCharacter(text[place])) ++place;
  return std::min(place, text.size());
}

}  // namespace

std::size_t shownColumns(std::string_view utf8) {
  std::size_t columns = 0;
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(utf8.data());
  for (std::size_t i = 0; i < utf8.size();) {
    UChar32 character = 0;
    U8_NEXT_OR_FFFD(bytes, i, utf8.size(), character);
    columns += columnsOf(character);
  }
  return columns;
}

std::string faultText(std::string_view query, const QueryFault& fault) {
  const std::size_t begin = std::min(fault.begin, query.size());
  const std::size_t end = std::min(begin + fault.length, query.size());
  const std::size_t first = begin > kShownBefore ? boundary(query, begin - kShownBefore) : 0;
  const std::size_t shownEnd = boundary(query, std::min(begin + kShownBehind, query.size()));
  const std::string before = (first > 0 ? "…" : "") + shownPath(query.substr(first, begin - first));
  const std::string place = shownPath(query.substr(begin, std::min(end, shownEnd) - begin));
  const std::string behind =
      shownPath(query.substr(std::min(end, shownEnd), shownEnd - std::min(end, shownEnd)));
  std::string text = "ferncase: " + shownPath(fault.what()) + "\n    " + before + place + behind;
  if (shownEnd < query.size()) text += "…";
  text += "\n    " + std::string(shownColumns(before), ' ') + "^";
  text += std::string(std::max<std::size_t>(shownColumns(place), 1) - 1, '~') + "\n";
  if (!fault.correction.empty() && fault.correction.size() <= kShownBefore + kShownBehind)
    text += "did you mean  " + shownPath(fault.correction) + "\n";
  return text;
}

}  // namespace kbx
