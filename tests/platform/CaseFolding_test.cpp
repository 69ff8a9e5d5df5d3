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

std::u16string normalized(const UNormalizer2* form, const std::u16string& units) {
  UErrorCode status = U_ZERO_ERROR;
  char16_t result[64];
  const std::int32_t length = unorm2_normalize(
      form, units.data(), static_cast<std::int32_t>(units.size()), result, 64, &status);
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

std::u16string unitsOf(char32_t c) {
  if (c <= 0xFFFF) return {static_cast<char16_t>(c)};
  return {static_cast<char16_t>(U16_LEAD(c)), static_cast<char16_t>(U16_TRAIL(c))};
}

TEST(CaseFolding, EveryCharacterFoldsAsByICU) {
  UErrorCode status = U_ZERO_ERROR;
  const auto *decomposed = unorm2_getNFDInstance(&status),
             *composed = unorm2_getNFCInstance(&status);
  for (char32_t c = 1; c <= 0x10FFFF; ++c) {
    if (U_IS_SURROGATE(c)) continue;
    ASSERT_EQ(foldedKey({c}, kCase),
              normalized(composed, foldedByICU(normalized(decomposed, unitsOf(c)))))
        << std::hex << std::uint32_t{c};
  }
}

TEST(CaseFolding, EveryMarkOnALetterFoldsAsByICU) {
  UErrorCode status = U_ZERO_ERROR;
  const auto *decomposed = unorm2_getNFDInstance(&status),
             *composed = unorm2_getNFCInstance(&status);
  for (char16_t letter : {u'a', u'I', u'S', u'z', u'=', u'\n'}) {
    for (char32_t c = 0x80; c <= 0xFFFF; ++c) {
      if (!joinsBefore(c, kCase)) continue;
      ASSERT_EQ(foldedKey({letter, c}, kCase),
                normalized(composed,
                           foldedByICU(normalized(decomposed, {letter, static_cast<char16_t>(c)}))))
          << int{letter} << " " << std::hex << std::uint32_t{c};
    }
  }
}

TEST(CaseFolding, WhatIsLeftOutAsADiacriticIsNoLetterInTheCollationOrder) {
  UErrorCode status = U_ZERO_ERROR;
  UCollator* letters = ucol_open("", &status);
  ucol_setStrength(letters, UCOL_PRIMARY);
  int diacritics = 0, others = 0;
  for (char32_t c = 0x80; c <= 0x10FFFF; ++c) {
    if (U_IS_SURROGATE(c) || !foldedKey({c}, kMarks).empty()) continue;
    const std::u16string units = unitsOf(c);
    const bool isLetter =
        ucol_strcoll(letters, units.data(), static_cast<std::int32_t>(units.size()), u"", 0) != 0;
    ++(isLetter ? others : diacritics);
  }
  ucol_close(letters);
  EXPECT_GT(diacritics, 650);
  // Small letters above others and a few signs of one script each have places of their own.
  EXPECT_LT(others, 160);
}

struct Case {
  const char* rule;
  std::u32string characters;
  NSStringCompareOptions options;
  std::u16string key;
};

TEST(CaseFolding, TheOptionsSayWhatDoesNotCount) {
  for (const auto& [rule, characters, options, key] : {
           Case{"nothing but composition without options", U"E\u0301", kNone, u"\u00C9"},
           {"case", U"E\u0301", kCase, u"\u00E9"},
           {"marks", U"\u00C9", kMarks, u"E"},
           {"both", U"\u00C9", kCase | kMarks, u"e"},
           {"sharp s is two letters", U"\u00DF", kCase, u"ss"},
           {"so is the capital one", U"\u1E9E", kCase, u"ss"},
           {"and a ligature", U"\uFB03", kCase, u"ffi"},
           {"a dotted capital I keeps its dot", U"\u0130", kCase, u"i\u0307"},
           {"a dotless i is another letter", U"\u0131", kCase | kMarks, u"\u0131"},
           {"a final sigma is a sigma", U"\u03C2", kCase, u"\u03C3"},
           {"a Cherokee letter folds upwards", U"\uAB70", kCase, u"\u13A0"},
           {"a letter beyond the first plane", U"\U00010400", kCase, u"\U00010428"},
           {"marks come in canonical order", U"x\u0301\u0327", kCase, u"x\u0327\u0301"},
           {"jamo become a syllable", U"\u1112\u1161\u11AB", kCase, u"\uD55C"},
           {"a full-width letter is itself", U"\uFF21", kCase, u"\uFF41"},
           {"unless widths do not count", U"\uFF21", kCase | kWidth, u"a"},
           {"half-width kana and its mark", U"\uFF76\uFF9E", kWidth, u"\u30AC"},
           {"the mark alone is left out", U"\uFF76\uFF9E", kWidth | kMarks, u"\u30AB"},
           {"an ideographic space is a space", U"\u3000", kWidth, u" "},
           {"half-width Hangul", U"\uFFA1", kWidth, u"\u3131"},
           {"a won sign", U"\uFFE6", kWidth, u"\u20A9"},
           {"a nukta is a diacritic", U"\u0915\u093C", kMarks, u"\u0915"},
           {"a virama is none", U"\u0915\u094D", kMarks, u"\u0915\u094D"},
           {"nor a vowel sign", U"\u0915\u093F", kMarks, u"\u0915\u093F"},
           {"nor a Thai vowel", U"\u0E01\u0E38", kMarks, u"\u0E01\u0E38"},
           {"a Thai tone is one", U"\u0E01\u0E48", kMarks, u"\u0E01"},
           {"Hebrew points", U"\u05E9\u05C1\u05B8", kMarks, u"\u05E9"},
           {"Arabic vowels", U"\u0628\u064E", kMarks, u"\u0628"},
           {"a stroke is part of the letter", U"\u00F8", kMarks, u"\u00F8"},
           {"a lone surrogate is itself", {0xD800}, kCase, {0xD800}},
       }) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(foldedKey(characters, options), key);
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
