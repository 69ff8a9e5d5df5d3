// Characters: what each character is to the tokenizer, and the form in which it is compared.
#pragma once

#include <cstdint>
#include <span>

namespace kbx {

enum class CharacterKind : std::uint8_t {
  Separator,   // ends a word
  Ignored,     // as if it were not there: soft hyphens, accents, zero-width characters
  Letter,      // of a word: letters, digits, vowel signs of scripts with blanks
  Mark,        // belongs to the character before it
  Stacker,     // a mark that takes the next character into the same syllable
  Ideograph,   // of a script without blanks, and pictures
  Apostrophe,  // within a word it parts and joins
  Hyphen,      // likewise
  Several      // stands for several characters: expansionOf()
};

/// A character's kind and what it is compared as.
struct FoldedCharacter {
  CharacterKind kind;
  char32_t character;  // of no meaning for Separator, Ignored and Several
  /// A number or a sign that stands for letters or digits, as "²", "№" and "㎏": a word of its own
  /// that sticks to its neighbours.
  bool isSign = false;
};

/// Case is folded (in full), as are widths, compatibility forms, digits of all scripts; accents of
/// alphabets are dropped, but vowel signs, tone marks and the like, which make another word, stay.
/// Folding what was folded changes nothing. Any number may be asked for. Safe from any thread.
FoldedCharacter folded(char32_t character);

/// What a character of the kind Several stands for. Each has a kind of its own, never Several.
std::span<const char32_t> expansionOf(char32_t character);

/// The one character that two make together, or 0: a syllable of its letters, a letter with its
/// sign.
char32_t composed(char32_t first, char32_t second);

}  // namespace kbx
