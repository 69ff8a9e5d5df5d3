#include "platform/markup/CharacterReference.h"

#include <algorithm>

#include "platform/markup/Characters.h"

namespace kbx {

ReferencedNumber referencedNumber(std::string_view text) {
  const bool isHexadecimal = text.size() > 2 && (text[2] == 'x' || text[2] == 'X');
  const char32_t base = isHexadecimal ? 16 : 10;
  const std::size_t start = isHexadecimal ? 3 : 2;
  ReferencedNumber number{start, 0};
  for (; number.length < text.size(); ++number.length) {
    const int digit = digitValue(text[number.length], static_cast<int>(base));
    if (digit < 0) break;
    number.value = number.value * base + static_cast<char32_t>(digit);
    number.value = std::min(number.value, char32_t{0x110000});
  }
  if (number.value >= 0x80 && number.value <= 0x9F)
    number.value = windows1252(static_cast<std::uint8_t>(number.value));
  return number.length > start ? number : ReferencedNumber{};
}

CharacterReference strictNumericReference(std::string_view text) {
  if (text.size() < 4 || text[1] != '#' || text[2] == 'X') return {};
  const ReferencedNumber number = referencedNumber(text);
  if (number.length == 0 || number.length >= text.size() || text[number.length] != ';') return {};
  if (!isXMLCharacter(number.value)) return {};
  CharacterReference result;
  result.length = number.length + 1;
  result.byteCount = static_cast<std::uint8_t>(encodeUTF8(number.value, result.bytes));
  return result;
}

char32_t windows1252(std::uint8_t byte) {
  static constexpr char16_t kCharacters[32] = {
      0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
      0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
      0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  return kCharacters[byte - 0x80];
}

}  // namespace kbx
