// CharacterReference: what stands for a character in markup, and the numbers among them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kbx {

/// What the reference at the start of a text stands for.
struct CharacterReference {
  std::size_t length = 0;  // of the reference in bytes; 0 when there is none and "&" is text
  char bytes[8] = {};      // UTF-8
  std::uint8_t byteCount = 0;

  std::string_view text() const { return {bytes, byteCount}; }
};

/// The number in the reference that a text begins with.
struct ReferencedNumber {
  std::size_t length = 0;  // of the reference without a semicolon; 0 when there is none
  char32_t value = 0;      // 0x110000 for any larger one; 128 to 159 as in windows-1252
};
ReferencedNumber referencedNumber(std::string_view text);

/// The reference to a number that `text` begins with, with the semicolon required and the number a
/// character that XML allows; length 0 otherwise.
CharacterReference strictNumericReference(std::string_view text);

/// Stores the UTF-8 of a character at `bytes`, where four have room; answers its length.
inline std::size_t encodeUTF8(char32_t character, char* bytes) {
  const auto put = [&](std::size_t i, char32_t value) { bytes[i] = static_cast<char>(value); };
  if (character < 0x80) {
    put(0, character);
    return 1;
  }
  if (character < 0x800) {
    put(0, 0xC0 | (character >> 6));
    put(1, 0x80 | (character & 0x3F));
    return 2;
  }
  if (character < 0x10000) {
    put(0, 0xE0 | (character >> 12));
    put(1, 0x80 | ((character >> 6) & 0x3F));
    put(2, 0x80 | (character & 0x3F));
    return 3;
  }
  put(0, 0xF0 | (character >> 18));
  put(1, 0x80 | ((character >> 12) & 0x3F));
  put(2, 0x80 | ((character >> 6) & 0x3F));
  put(3, 0x80 | (character & 0x3F));
  return 4;
}

/// The character that a byte from 0x80 to 0x9F is in windows-1252; the byte's own number where it
/// has none.
char32_t windows1252(std::uint8_t byte);

}  // namespace kbx
