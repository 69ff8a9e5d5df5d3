#include "platform/text/CaseFolding.h"

#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <string>

namespace kbx {
namespace {

constexpr auto kCase = NSCaseInsensitiveSearch;
constexpr auto kMarks = NSDiacriticInsensitiveSearch;
constexpr auto kWidth = NSWidthInsensitiveSearch;
constexpr auto kNone = NSStringCompareOptions{};

std::u16string decomposedByICU(const std::u16string& units) {
  UErrorCode status = U_ZERO_ERROR;
  char16_t result[64];
  const std::int32_t length =
      unorm2_normalize(unorm2_getNFDInstance(&status), units.data(),
                       static_cast<std::int32_t>(units.size()), result, 64, &status);
  return {result, static_cast<std::size_t>(length)};
}

std::u16string foldedByICU(const std::u16string& units) {
  UErrorCode status = U_ZERO_ERROR;
  char16_t result[64];
  const std::int32_t length =
      u_strFoldCase(result, 64, units.data(), static_cast<std::int32_t>(units.size()),
                    U_FOLD_CASE_DEFAULT, &status);
  return {result, static_cast<std::size_t>(length)};
}

std::u16string unitsOf(const std::u32string& characters) {
  std::u16string units;
  for (char32_t c : characters) {
    if (c > 0xFFFF) units += static_cast<char16_t>(U16_LEAD(c));
    units += static_cast<char16_t>(c > 0xFFFF ? U16_TRAIL(c) : c);
  }
  return units;
}

TEST(CaseFolding, EveryCharacterFoldsAsByICU) {
  for (char32_t c = 1; c <= 0x10FFFF; ++c) {
    if (U_IS_SURROGATE(c)) continue;
    const std::u16string units = unitsOf({c});
    ASSERT_EQ(unitsOf(foldedCharacters({c}, kCase)),
              decomposedByICU(foldedByICU(decomposedByICU(units))))
        << std::hex << std::uint32_t{c};
  }
}

TEST(CaseFolding, TheShortWayAgreesWithTheLong) {
  for (auto options : {kNone, kCase, kMarks | kWidth, kCase | kMarks | kWidth}) {
    for (char32_t c = 1; c <= 0x10FFFF; ++c) {
      const char32_t folded = foldedCharacter(c, options);
      if (folded == 0) continue;
      ASSERT_EQ(foldedCharacters({c}, options), std::u32string{folded})
          << std::hex << std::uint32_t{c};
    }
  }
}

TEST(CaseFolding, WhatIsLeftOutAsADiacriticIsNoLetterInTheCollationOrder) {
  UErrorCode status = U_ZERO_ERROR;
  UCollator* letters = ucol_open("", &status);
  ucol_setStrength(letters, UCOL_PRIMARY);
  int count = 0, others = 0;
  for (UChar32 c = 0x80; c <= 0x10FFFF; ++c) {
    const auto character = static_cast<char32_t>(c);
    if (U_IS_SURROGATE(c) || !foldedCharacters({character}, kMarks).empty()) continue;
    const std::u16string units = unitsOf({character});
    const bool isLetter =
        ucol_strcoll(letters, units.data(), static_cast<std::int32_t>(units.size()), u"", 0) != 0;
    ++(isLetter ? others : count);
  }
  ucol_close(letters);
  EXPECT_GT(count, 650);
  // Small letters written above others and a few signs of one script each have places of their own.
  EXPECT_LT(others, 160);
}

struct Case {
  const char* rule;
  std::u32string characters;
  NSStringCompareOptions options;
  std::u32string folded;
};

TEST(CaseFolding, TheOptionsSayWhatDoesNotCount) {
  for (const auto& [rule, characters, options, folded] : {
           Case{"nothing but composition without options", U"\u00C9", kNone, U"E\u0301"},
           {"case", U"\u00C9", kCase, U"e\u0301"},
           {"marks", U"\u00C9", kMarks, U"E"},
           {"both", U"\u00C9", kCase | kMarks, U"e"},
           {"sharp s is two letters", U"\u00DF", kCase, U"ss"},
           {"so is the capital one", U"\u1E9E", kCase, U"ss"},
           {"and a ligature", U"\uFB03", kCase, U"ffi"},
           {"a dotted capital I keeps its dot", U"\u0130", kCase, U"i\u0307"},
           {"a dotless i is another letter", U"\u0131", kCase | kMarks, U"\u0131"},
           {"a final sigma is a sigma", U"\u03C2", kCase, U"\u03C3"},
           {"a Cherokee letter folds upwards", U"\uAB70", kCase, U"\u13A0"},
           {"a letter beyond the first plane", U"\U00010400", kCase, U"\U00010428"},
           {"marks come in canonical order", U"a\u0301\u0327", kCase, U"a\u0327\u0301"},
           {"a full-width letter is itself", U"\uFF21", kCase, U"\uFF41"},
           {"unless widths do not count", U"\uFF21", kCase | kWidth, U"a"},
           {"half-width kana and its mark", U"\uFF76\uFF9E", kWidth, U"\u30AB\u3099"},
           {"the mark alone is left out", U"\uFF76\uFF9E", kWidth | kMarks, U"\u30AB"},
           {"an ideographic space is a space", U"\u3000", kWidth, U" "},
           {"half-width Hangul", U"\uFFA1", kWidth, U"\u3131"},
           {"a won sign", U"\uFFE6", kWidth, U"\u20A9"},
           {"a nukta is a diacritic", U"\u0915\u093C", kMarks, U"\u0915"},
           {"a virama is none", U"\u0915\u094D", kMarks, U"\u0915\u094D"},
           {"nor a vowel sign", U"\u0915\u093F", kMarks, U"\u0915\u093F"},
           {"nor a Thai vowel", U"\u0E01\u0E38", kMarks, U"\u0E01\u0E38"},
           {"a Thai tone is one", U"\u0E01\u0E48", kMarks, U"\u0E01"},
           {"Hebrew points", U"\u05E9\u05C1\u05B8", kMarks, U"\u05E9"},
           {"Arabic vowels", U"\u0628\u064E", kMarks, U"\u0628"},
           {"a stroke is part of the letter", U"\u00F8", kMarks, U"\u00F8"},
       }) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(foldedCharacters(characters, options), folded);
  }
}

TEST(CaseFolding, MarksAndPartsOfSyllablesJoin) {
  for (char32_t c :
       {U'\u0301', U'\u3099', U'\u093F', U'\u094D', U'\uFE0F', U'\u20E3', U'\u1161', U'\u11A8'})
    EXPECT_TRUE(joinsBefore(c, kCase)) << std::hex << std::uint32_t{c};
  for (char32_t c : {U'a', U'\u00E9', U'\u0416', U'\u1100', U'\uAC00', U'\u200D', U'😀', U'🏽',
                     U'\uFF9E', U'\U0001F1E9'})
    EXPECT_FALSE(joinsBefore(c, kCase)) << std::hex << std::uint32_t{c};
  EXPECT_TRUE(joinsBefore(U'\uFF9E', kWidth));
}

}  // namespace
}  // namespace kbx
