#include "platform/text/CaseFolding.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <cstdint>

#include "platform/text/Decomposition.h"

namespace kbx {
namespace {

constexpr char32_t kFirstMark = 0x300;

/// The common form of a full-width or half-width character; any other is itself.
char32_t commonWidth(char32_t character) {
  const bool hasWidth = character == 0x3000 || (character >= 0xFF00 && character <= 0xFFEE);
  if (!hasWidth) return character;
  UErrorCode status = U_ZERO_ERROR;
  char16_t mapped[4];
  const std::int32_t count = unorm2_getRawDecomposition(
      unorm2_getNFKCInstance(&status), static_cast<UChar32>(character), mapped, 4, &status);
  return count == 1 ? mapped[0] : character;
}

/// Marks that change a letter's sound or accent. The combining classes left out are those of the
/// viramas and vowel signs of Asian scripts, without which it would be another syllable.
bool isDiacritic(char32_t character) {
  if (character < kFirstMark) return false;
  switch (u_getCombiningClass(static_cast<UChar32>(character))) {
    case 0:
    case 9:
    case 84:
    case 91:
    case 103:
    case 118:
    case 129:
    case 130:
    case 132:
      return false;
    default:
      return true;
  }
}

/// Letters that fold to several and do not decompose: sharp s, an old n, the Armenian ligature
/// ech yiwn, a with half ring, and the ligatures of both alphabets.
bool hasFullFolding(char32_t c) {
  return c == 0xDF || c == 0x149 || c == 0x587 || c == 0x1E9A || c == 0x1E9E ||
         (c >= 0xFB00 && c <= 0xFB06) || (c >= 0xFB13 && c <= 0xFB17);
}

void appendCaseFolded(std::u32string& folded, char32_t character) {
  const auto c = static_cast<UChar32>(character);
  if (!hasFullFolding(character)) {
    folded += static_cast<char32_t>(u_foldCase(c, U_FOLD_CASE_DEFAULT));
    return;
  }
  const auto unit = static_cast<char16_t>(character);
  char16_t parts[8];
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t count = u_strFoldCase(parts, 8, &unit, 1, U_FOLD_CASE_DEFAULT, &status);
  for (std::int32_t i = 0; i < count; ++i) folded += parts[i];
}

bool isDecomposable(char32_t character) {
  if (character < 0xC0) return false;
  UErrorCode status = U_ZERO_ERROR;
  char16_t parts[8];
  return unorm2_getDecomposition(unorm2_getNFDInstance(&status), static_cast<UChar32>(character),
                                 parts, 8, &status) >= 0;
}

}  // namespace

bool joinsBefore(char32_t character, NSStringCompareOptions options) {
  if (character < kFirstMark) return false;
  if (options & NSWidthInsensitiveSearch) character = commonWidth(character);
  const auto c = static_cast<UChar32>(character);
  if (U_GET_GC_MASK(c) & U_GC_M_MASK) return true;
  UErrorCode status = U_ZERO_ERROR;
  return !unorm2_hasBoundaryBefore(unorm2_getNFCInstance(&status), c);
}

std::u32string foldedCharacters(std::u32string characters, NSStringCompareOptions options) {
  std::u32string parts;
  for (char32_t character : characters)
    appendDecomposed(parts,
                     options & NSWidthInsensitiveSearch ? commonWidth(character) : character);
  orderMarks(parts);
  if (options & NSDiacriticInsensitiveSearch) std::erase_if(parts, isDiacritic);
  if (!(options & NSCaseInsensitiveSearch)) return parts;
  std::u32string folded;
  for (char32_t character : parts) appendCaseFolded(folded, character);
  return folded;
}

char32_t foldedCharacter(char32_t character, NSStringCompareOptions options) {
  if (options & NSWidthInsensitiveSearch) character = commonWidth(character);
  if (isDecomposable(character) || isDiacritic(character)) return 0;
  if (!(options & NSCaseInsensitiveSearch)) return character;
  if (hasFullFolding(character)) return 0;
  return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(character), U_FOLD_CASE_DEFAULT));
}

}  // namespace kbx
