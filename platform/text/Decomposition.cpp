#include "platform/text/Decomposition.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstdint>

namespace kbx {
namespace {

constexpr UChar32 kFirstComposed = 0xC0;
constexpr std::int32_t kMostParts = 8;  // no character has more than four

/// The units of a character's decomposition; -1 when it is its own.
std::int32_t decompose(UChar32 character, char16_t (&parts)[kMostParts]) {
  if (character < kFirstComposed) return -1;
  UErrorCode status = U_ZERO_ERROR;
  return unorm2_getDecomposition(unorm2_getNFDInstance(&status), character, parts, kMostParts,
                                 &status);
}

std::u16string decomposed(std::u16string_view units) {
  std::u32string characters;
  characters.reserve(units.size());
  for (std::size_t i = 0; i < units.size();) {
    UChar32 c;
    U16_NEXT(units, i, units.size(), c);
    appendDecomposed(characters, static_cast<char32_t>(c));
  }
  orderMarks(characters);
  std::u16string result;
  result.reserve(characters.size());
  for (char32_t character : characters) appendUnits(result, character);
  return result;
}

std::uint8_t combiningClass(char32_t character) {
  return character < 0x300 ? 0 : u_getCombiningClass(static_cast<UChar32>(character));
}

}  // namespace

std::size_t decomposedLength(std::u16string_view units) {
  std::size_t length = 0;
  for (std::size_t i = 0; i < units.size();) {
    UChar32 c;
    U16_NEXT(units, i, units.size(), c);
    char16_t parts[kMostParts];
    const std::int32_t count = decompose(c, parts);
    length += static_cast<std::size_t>(count < 0 ? U16_LENGTH(c) : count);
  }
  return length;
}

std::size_t decomposedLength(const NSString* text) {
  return text->visitUnits([](auto units) {
    if constexpr (sizeof(units[0]) == sizeof(char16_t))
      return decomposedLength(std::u16string_view(units.data(), units.size()));
    else
      return units.size();
  });
}

void appendDecomposed(std::u32string& characters, char32_t character) {
  char16_t parts[kMostParts];
  const std::int32_t count = decompose(static_cast<UChar32>(character), parts);
  if (count < 0) {
    characters += character;
    return;
  }
  for (std::int32_t i = 0; i < count;) {
    UChar32 part;
    U16_NEXT(parts, i, count, part);
    characters += static_cast<char32_t>(part);
  }
}

void orderMarks(std::u32string& characters) {
  auto isMark = [](char32_t character) { return combiningClass(character) != 0; };
  for (auto at = characters.begin(); at != characters.end();) {
    at = std::find_if(at, characters.end(), isMark);
    const auto end = std::find_if_not(at, characters.end(), isMark);
    if (end - at > 1)
      std::stable_sort(
          at, end, [](char32_t a, char32_t b) { return combiningClass(a) < combiningClass(b); });
    at = end;
  }
}

void appendUnits(std::u16string& units, char32_t character) {
  if (character > 0xFFFF) units += static_cast<char16_t>(U16_LEAD(character));
  units += static_cast<char16_t>(character > 0xFFFF ? U16_TRAIL(character) : character);
}

Ref<NSString> NSString::decomposedStringWithCanonicalMapping() const {
  return visitUnits([this](auto units) -> Ref<NSString> {
    if constexpr (sizeof(units[0]) == sizeof(char16_t))
      return stringWithUTF16(decomposed({units.data(), units.size()}));
    else
      return const_cast<NSString*>(this);
  });
}

}  // namespace kbx
