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
std::size_t encodeUTF8(char32_t character, char* bytes);

/// The character that a byte from 0x80 to 0x9F is in windows-1252; the byte's own number where it
/// has none.
char32_t windows1252(std::uint8_t byte);

}  // namespace kbx
