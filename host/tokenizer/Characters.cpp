#include "host/tokenizer/Characters.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/uscript.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <array>
#include <atomic>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace kbx {
namespace {

constexpr char32_t kHighest = 0x10FFFF;
constexpr char32_t kPageSize = 256;
constexpr std::uint32_t kCharacterBits = 0x1FFFFF;
constexpr std::uint32_t kSignBit = 0x800000;

/// Letters with a stroke, which Unicode does not take apart, and letters of two.
struct Spelling {
  char32_t character;
  std::u16string_view plain;
};
constexpr Spelling kSpellings[] = {
    {0xE6, u"ae"}, {0xF0, u"d"},   {0xF8, u"o"},   {0x111, u"d"},  {0x127, u"h"}, {0x131, u"i"},
    {0x142, u"l"}, {0x153, u"oe"}, {0x167, u"t"},  {0x180, u"b"},  {0x197, u"i"}, {0x268, u"i"},
    {0x19A, u"l"}, {0x1B6, u"z"},  {0x1E5, u"g"},  {0x23C, u"c"},  {0x247, u"e"}, {0x249, u"j"},
    {0x24D, u"r"}, {0x24F, u"y"},  {0x2C65, u"a"}, {0x2C66, u"t"}, {0x28B, u"v"}, {0x1D7D, u"p"}};

const UNormalizer2* normalizer(const UNormalizer2* (*get)(UErrorCode*)) {
  UErrorCode status = U_ZERO_ERROR;
  return get(&status);  // built into the library: never fails
}

std::u16string normalized(const UNormalizer2* form, std::u16string_view text) {
  std::array<char16_t, 64> result;  // the longest form of one character has 18 units
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t length =
      unorm2_normalize(form, text.data(), static_cast<std::int32_t>(text.size()), result.data(),
                       static_cast<std::int32_t>(result.size()), &status);
  return U_SUCCESS(status) ? std::u16string(result.data(), static_cast<std::size_t>(length))
                           : std::u16string(text);
}

std::vector<char32_t> charactersOf(std::u16string_view text) {
  std::vector<char32_t> characters;
  for (std::int32_t at = 0; at < static_cast<std::int32_t>(text.size());) {
    UChar32 character;
    U16_NEXT(text.data(), at, static_cast<std::int32_t>(text.size()), character);
    characters.push_back(static_cast<char32_t>(character));
  }
  return characters;
}

void append(std::u16string& text, char32_t character) {
  char16_t units[2];
  std::int32_t length = 0;
  U16_APPEND_UNSAFE(units, length, static_cast<UChar32>(character));
  text.append(units, static_cast<std::size_t>(length));
}

UScriptCode scriptOf(char32_t character) {
  UErrorCode status = U_ZERO_ERROR;
  return uscript_getScript(static_cast<UChar32>(character), &status);
}

bool isMark(char32_t character) {
  return (U_GET_GC_MASK(static_cast<UChar32>(character)) & U_GC_M_MASK) != 0;
}

/// Accents, points and breathings of alphabets, which people leave out. The marks of other scripts
/// are vowels or tones, and the two marks of kana make other consonants.
bool isAccent(char32_t character) {
  const auto mask = U_GET_GC_MASK(static_cast<UChar32>(character));
  if ((mask & (U_GC_MN_MASK | U_GC_ME_MASK)) == 0 || character == 0x3099 || character == 0x309A)
    return false;
  switch (scriptOf(character)) {
    case USCRIPT_INHERITED:
    case USCRIPT_COMMON:
    case USCRIPT_LATIN:
    case USCRIPT_GREEK:
    case USCRIPT_CYRILLIC:
    case USCRIPT_COPTIC:
    case USCRIPT_HEBREW:
    case USCRIPT_ARABIC:
    case USCRIPT_SYRIAC:
      return true;
    default:
      return false;
  }
}

/// Whether nobody writes blanks between the words of the character's script.
bool isWithoutBlanks(char32_t character) {
  switch (scriptOf(character)) {
    case USCRIPT_HAN:
    case USCRIPT_HIRAGANA:
    case USCRIPT_KATAKANA:
    case USCRIPT_HANGUL:  // has blanks, but particles stick to the words
    case USCRIPT_BOPOMOFO:
    case USCRIPT_YI:
    case USCRIPT_TANGUT:
    case USCRIPT_NUSHU:
    case USCRIPT_KHITAN_SMALL_SCRIPT:
    case USCRIPT_JAVANESE:
    case USCRIPT_BALINESE:
      return true;
    default:
      break;
  }
  if (character == 0x30FC || character == 0x3006) return true;  // of no script of their own
  return u_getIntPropertyValue(static_cast<UChar32>(character), UCHAR_LINE_BREAK) ==
         U_LB_COMPLEX_CONTEXT;
}

/// Pictures that people send, not the signs that print has had for long.
bool isPicture(char32_t character) {
  const auto code = static_cast<UChar32>(character);
  return u_hasBinaryProperty(code, UCHAR_REGIONAL_INDICATOR) ||
         (character >= 0x2190 && u_hasBinaryProperty(code, UCHAR_EXTENDED_PICTOGRAPHIC));
}

bool isJamoInside(char32_t character) { return character >= 0x1160 && character <= 0x11FF; }

/// The kind of a character that is folded already.
CharacterKind kindOf(char32_t character) {
  const auto code = static_cast<UChar32>(character);
  const auto mask = U_GET_GC_MASK(code);
  switch (character) {
    case '\'':
    case 0x2018:
    case 0x2019:
    case 0x2BC:
      return CharacterKind::Apostrophe;
    case '-':
    case 0x2010:
      return CharacterKind::Hyphen;
    case 0x17D2:
    case 0x1039:
      return CharacterKind::Stacker;
    case 0x640:  // lengthens Arabic letters for looks
      return CharacterKind::Ignored;
    default:
      break;
  }
  if (u_hasBinaryProperty(code, UCHAR_DEFAULT_IGNORABLE_CODE_POINT)) return CharacterKind::Ignored;
  if ((mask & U_GC_CF_MASK) != 0) return CharacterKind::Ignored;
  // The tones of a smile: a picture is found without them.
  if (character >= 0x1F3FB && character <= 0x1F3FF) return CharacterKind::Ignored;
  if (isAccent(character)) return CharacterKind::Ignored;
  if (isMark(character) || isJamoInside(character)) return CharacterKind::Mark;
  if ((mask & (U_GC_L_MASK | U_GC_N_MASK | U_GC_CO_MASK)) != 0)
    return isWithoutBlanks(character) ? CharacterKind::Ideograph : CharacterKind::Letter;
  return isPicture(character) ? CharacterKind::Ideograph : CharacterKind::Separator;
}

/// Whether the character is taken as it is, although compatibility forms of it exist: jamo that
/// stand alone on purpose, and signs that are part of no word.
bool isTakenAsItIs(char32_t character) {
  return (character >= 0x3131 && character <= 0x318E) || character == 0x2122 || character == 0x2120;
}

/// A footnote's mark, a power, a fraction, a circled number, a unit in one square, as opposed to
/// other forms of letters and decimal digits.
bool isSign(char32_t character) {
  const auto code = static_cast<UChar32>(character);
  const auto form = u_getIntPropertyValue(code, UCHAR_DECOMPOSITION_TYPE);
  return form != U_DT_NONE && form != U_DT_CANONICAL &&
         (U_GET_GC_MASK(code) & (U_GC_NO_MASK | U_GC_S_MASK)) != 0;
}

std::u16string withoutAccents(std::u16string_view text) {
  std::u16string others;
  for (const char32_t character : charactersOf(text))
    if (!isAccent(character)) append(others, character);
  return others;
}

bool appendSpelling(std::u16string& text, char32_t character) {
  for (const Spelling& spelling : kSpellings) {
    if (spelling.character != character) continue;
    text += spelling.plain;
    return true;
  }
  return false;
}

/// Letters without strokes, and the digits of all scripts as those of ASCII.
std::u16string inPlainLetters(std::u16string_view text) {
  std::u16string plain;
  for (const char32_t character : charactersOf(text)) {
    const auto code = static_cast<UChar32>(character);
    if (u_charType(code) == U_DECIMAL_DIGIT_NUMBER)
      append(plain, U'0' + static_cast<char32_t>(u_charDigitValue(code)));
    else if (!appendSpelling(plain, character))
      append(plain, character);
  }
  return plain;
}

/// The characters that the character is compared as.
std::vector<char32_t> foldedForm(char32_t character) {
  if (isTakenAsItIs(character)) return {character};
  static const UNormalizer2* const casefold = normalizer(unorm2_getNFKCCasefoldInstance);
  static const UNormalizer2* const apart = normalizer(unorm2_getNFKDInstance);
  static const UNormalizer2* const together = normalizer(unorm2_getNFCInstance);
  std::u16string single;
  append(single, character);
  // Accents first: some fold into letters, and whoever wrote them apart would get other letters.
  const std::u16string letters = withoutAccents(normalized(apart, single));
  const std::u16string small = withoutAccents(normalized(apart, normalized(casefold, letters)));
  return charactersOf(normalized(together, inPlainLetters(small)));
}

/// 256 characters: the kind in the high bits, then whether it is a sign, the character or the place
/// of its expansion below.
struct Page {
  std::array<std::uint32_t, kPageSize> entries = {};
  std::vector<char32_t> expansions;  // the count before each
};

constexpr std::uint32_t entry(CharacterKind kind, char32_t character) {
  return (std::uint32_t{static_cast<std::uint8_t>(kind)} << 24) | character;
}

std::uint32_t entryOf(char32_t character, Page& page) {
  const CharacterKind own = kindOf(character);
  if (own == CharacterKind::Ignored) return entry(own, 0);
  const std::vector<char32_t> form = foldedForm(character);
  if (form.empty()) return entry(CharacterKind::Ignored, 0);
  const std::uint32_t sign = isSign(character) ? kSignBit : 0;
  if (form.size() == 1) return entry(kindOf(form[0]), form[0]) | sign;
  const auto place = static_cast<char32_t>(page.expansions.size());
  page.expansions.push_back(static_cast<char32_t>(form.size()));
  page.expansions.insert(page.expansions.end(), form.begin(), form.end());
  return entry(CharacterKind::Several, place) | sign;
}

using Pages = std::array<std::atomic<const Page*>, (kHighest + 1) / kPageSize>;

/// Made when the first character of them is met, and kept.
Pages& pages() {
  static Pages* const pages = new Pages{};
  return *pages;
}

const Page* makePage(std::size_t number) {
  auto page = std::make_unique<Page>();
  for (char32_t low = 0; low < kPageSize; ++low)
    page->entries[low] = entryOf(static_cast<char32_t>(number) * kPageSize + low, *page);
  const Page* expected = nullptr;
  // Two threads may make the same page; the first to be done keeps its own.
  if (pages()[number].compare_exchange_strong(expected, page.get(), std::memory_order_acq_rel))
    return page.release();
  return expected;
}

const Page& pageOf(char32_t character) {
  const std::size_t number = character / kPageSize;
  const Page* page = pages()[number].load(std::memory_order_acquire);
  return page ? *page : *makePage(number);
}

/// Most of Han, and all syllables of Hangul: themselves.
bool isPlainIdeograph(char32_t character) {
  return (character >= 0x4E00 && character <= 0x9FFF) ||
         (character >= 0xAC00 && character <= 0xD7A3);
}

/// Nothing is assigned there, or nothing but selectors and private characters.
bool isBeyondScripts(char32_t character) { return character >= 0x32000; }

FoldedCharacter beyondScripts(char32_t character) {
  if (character > kHighest) return {CharacterKind::Separator, 0};
  if (character >= 0xF0000) return {CharacterKind::Letter, character};  // private
  return {character >= 0xE0000 && character < 0xE1000 ? CharacterKind::Ignored
                                                      : CharacterKind::Separator,
          0};
}

}  // namespace

FoldedCharacter folded(char32_t character) {
  if (isPlainIdeograph(character)) return {CharacterKind::Ideograph, character};
  if (isBeyondScripts(character)) return beyondScripts(character);
  const std::uint32_t found = pageOf(character).entries[character % kPageSize];
  return {static_cast<CharacterKind>(found >> 24), found & kCharacterBits, (found & kSignBit) != 0};
}

std::span<const char32_t> expansionOf(char32_t character) {
  const Page& page = pageOf(character);
  const std::uint32_t place = page.entries[character % kPageSize] & kCharacterBits;
  return std::span(page.expansions).subspan(place + 1, page.expansions[place]);
}

char32_t composed(char32_t first, char32_t second) {
  static const UNormalizer2* const form = normalizer(unorm2_getNFCInstance);
  const UChar32 pair =
      unorm2_composePair(form, static_cast<UChar32>(first), static_cast<UChar32>(second));
  return pair < 0 ? 0 : static_cast<char32_t>(pair);
}

}  // namespace kbx
