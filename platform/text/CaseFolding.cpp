#include "platform/text/CaseFolding.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <cstdint>
#include <optional>

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

/// The key of an ASCII letter with one mark, which is what decomposed text is full of; absent where
/// it takes the long way.
std::optional<std::u16string> keyOfMarkedLetter(const std::u32string& characters,
                                                NSStringCompareOptions options) {
  if (characters.size() != 2 || characters[0] >= 0x80 || characters[1] > 0xFFFF ||
      (options & (NSDiacriticInsensitiveSearch | NSWidthInsensitiveSearch)))
    return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* composer = unorm2_getNFCInstance(&status);
  auto letter = static_cast<UChar32>(characters[0]), mark = static_cast<UChar32>(characters[1]);
  char16_t parts[8];
  if (unorm2_getRawDecomposition(composer, mark, parts, 8, &status) >= 0) return std::nullopt;
  if (options & NSCaseInsensitiveSearch) {
    letter = u_foldCase(letter, U_FOLD_CASE_DEFAULT);
    mark = u_foldCase(mark, U_FOLD_CASE_DEFAULT);
  }
  const UChar32 both = unorm2_composePair(composer, letter, mark);
  if (both >= 0) return std::u16string{static_cast<char16_t>(both)};
  return std::u16string{static_cast<char16_t>(letter), static_cast<char16_t>(mark)};
}

/// The canonical composition. In linear time, because the marks are in their order already.
std::u16string composed(const std::u32string& characters) {
  std::u16string parts;
  for (char32_t character : characters) appendUnits(parts, character);
  std::u16string result(parts.size(), u'\0');
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t length = unorm2_normalize(
      unorm2_getNFCInstance(&status), parts.data(), static_cast<std::int32_t>(parts.size()),
      result.data(), static_cast<std::int32_t>(result.size()), &status);
  if (U_FAILURE(status)) return parts;  // a run of marks beyond all measure
  result.resize(static_cast<std::size_t>(length));
  return result;
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

std::u16string foldedKey(const std::u32string& characters, NSStringCompareOptions options) {
  if (auto key = keyOfMarkedLetter(characters, options)) return *key;
  std::u32string parts;
  for (char32_t character : characters)
    appendDecomposed(parts,
                     options & NSWidthInsensitiveSearch ? commonWidth(character) : character);
  orderMarks(parts);
  if (options & NSDiacriticInsensitiveSearch) std::erase_if(parts, isDiacritic);
  if (!(options & NSCaseInsensitiveSearch)) return composed(parts);
  std::u32string folded;
  for (char32_t character : parts) appendCaseFolded(folded, character);
  return composed(folded);
}

}  // namespace kbx
