#include <gtest/gtest.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>
#include <unicode/usearch.h>

#include <optional>
#include <random>
#include <string>

#include "platform/objects/NSString.h"
#include "platform/text/CompareOptions.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr auto kCase = NSCaseInsensitiveSearch;
constexpr auto kAnchored = NSAnchoredSearch;
constexpr auto kMarksAndWidth = NSDiacriticInsensitiveSearch | NSWidthInsensitiveSearch;

Ref<NSString> units(const std::u16string& text) { return NSString::stringWithUTF16(text); }

NSRange find(const std::u16string& text, const std::u16string& wanted,
             NSStringCompareOptions options) {
  return units(text)->rangeOfString(units(wanted), options);
}

/// The place by ICU's own string search, at the strength that leaves out what the options do.
NSRange findByICU(const std::u16string& text, const std::u16string& wanted,
                  NSStringCompareOptions options) {
  UErrorCode status = U_ZERO_ERROR;
  UCollator* collator = ucol_open("", &status);
  const bool ignoresMarks = options & NSDiacriticInsensitiveSearch, ignoresCase = options & kCase;
  ucol_setStrength(collator, ignoresMarks ? UCOL_PRIMARY : UCOL_SECONDARY);
  ucol_setAttribute(collator, UCOL_CASE_LEVEL, ignoresCase ? UCOL_OFF : UCOL_ON, &status);
  ucol_setAttribute(collator, UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
  UStringSearch* search =
      usearch_openFromCollator(wanted.data(), static_cast<std::int32_t>(wanted.size()), text.data(),
                               static_cast<std::int32_t>(text.size()), collator, nullptr, &status);
  const std::int32_t found = usearch_first(search, &status);
  NSRange range = kRangeNotFound;
  if (found != USEARCH_DONE && (!(options & kAnchored) || found == 0))
    range = {static_cast<std::uint64_t>(found),
             static_cast<std::uint64_t>(usearch_getMatchedLength(search))};
  usearch_close(search);
  ucol_close(collator);
  return range;
}

constexpr NSRange kNowhere = kRangeNotFound;

struct Case {
  const char* rule;
  std::u16string text, wanted;
  NSRange range;
  // Where the collation order sees it in another way: to it a sharp or long s differs from other s
  // as by a mark, vowel signs are letters, and a search leaves out case together with marks.
  std::optional<NSRange> otherByICU = {};
};

void expectFound(std::initializer_list<Case> cases, NSStringCompareOptions options) {
  for (const auto& [rule, text, wanted, range, otherByICU] : cases) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(find(text, wanted, options), range);
    EXPECT_EQ(findByICU(text, wanted, options), otherByICU.value_or(range)) << "by ICU";
  }
}

TEST(NSStringComparing, CaseDoesNotCountInASearch) {
  expectFound(
      {
          {"ASCII", u"Hello World", u"WORLD", {6, 5}},
          {"at the beginning", u"Hello", u"hELLO", {0, 5}},
          {"the first of two", u"aXbxc", u"X", {1, 1}},
          {"absent", u"Hello", u"world", kNowhere},
          {"longer than the text", u"ab", u"abc", kNowhere},
          {"ASCII in other text", u"Grüße, WORLD", u"world", {7, 5}},
          {"other text in ASCII", u"plain", u"ä", kNowhere},
          {"umlauts", u"SCHÖN", u"schön", {0, 5}},
          {"sharp s is two letters", u"STRASSE", u"straße", {0, 7}, kNowhere},
          {"and two letters are one", u"Die Straße", u"STRASSE", {4, 6}, kNowhere},
          {"half of a sharp s is nothing", u"ß", u"s", kNowhere},
          {"nor is its beginning", u"aßb", u"as", kNowhere},
          {"nor its end", u"aßb", u"sb", kNowhere},
          {"Greek", u"ΟΔΥΣΣΕΥΣ", u"οδυσσευς", {0, 8}},
          {"Cyrillic", u"Привет, МИР", u"мир", {8, 3}},
          {"Armenian ligature", u"\u0587", u"\u0565\u0582", {0, 1}},
          {"a composed and a decomposed letter", u"CAFE\u0301!", u"café", {0, 5}},
          {"and the other way round", u"CAFÉ!", u"cafe\u0301", {0, 4}},
          {"marks in another order", u"a\u0301\u0327", u"A\u0327\u0301", {0, 3}},
          {"a letter is not found without its mark", u"Cafe\u0301", u"cafe", kNowhere},
          {"nor in a composed one", u"é", u"e", kNowhere},
          {"a later one without a mark is", u"e\u0301e", u"E", {2, 1}},
          {"a mark alone is in no letter", u"e\u0301", u"\u0301", kNowhere},
          {"a dotted capital I is no i", u"İ", u"i", kNowhere},
          {"a dotless i is no i", u"ı", u"I", kNowhere},
          {"a dotted capital I and its parts", u"İ", u"I\u0307", {0, 1}},
          {"the Kelvin sign", u"\u212A", u"k", {0, 1}},
          {"a long s", u"\u017F", u"S", {0, 1}, kNowhere},
          {"Hangul and its jamo", u"x\uD55C\uAE00", u"\u1112\u1161\u11AB", {1, 1}},
          {"a syllable is not its first jamo", u"\uD55C", u"\u1112", kNowhere},
          {"Devanagari",
           u"\u0939\u093F\u0928\u094D\u0926\u0940",
           u"\u0926\u0940",
           {4, 2},
           kNowhere},
          {"a consonant is not found without its vowel sign", u"\u0939\u093F", u"\u0939", kNowhere,
           NSRange{0, 1}},
          {"Deseret, beyond the first plane", u"a\U00010400", u"\U00010428", {1, 2}},
          {"an emoji", u"x😀y", u"😀", {1, 2}},
      },
      kCase);
}

TEST(NSStringComparing, APrefixMayDifferInMarksAndWidthButNotInCase) {
  const auto mask392 = kAnchored | kMarksAndWidth;
  ASSERT_EQ(std::uint64_t{mask392}, 392u);
  expectFound(
      {
          {"the same", u"Resume", u"Res", {0, 3}},
          {"marks in the text", u"Résumé", u"Resume", {0, 6}},
          {"decomposed marks in the text", u"Re\u0301sume\u0301!", u"Resume", {0, 8}},
          {"marks in the prefix", u"Resume", u"Ré", {0, 2}},
          {"another case", u"Résumé", u"resume", kNowhere, NSRange{0, 6}},
          {"not at the beginning", u"a résumé", u"résumé", kNowhere},
          {"full-width letters", u"ＡＢＣ", u"AB", {0, 2}},
          {"half-width kana", u"\uFF76\uFF9E", u"\u30AC", {0, 2}},
          {"Hangul has no diacritics", u"\uAC01", u"\uAC00", kNowhere},
          {"a nukta", u"\u0915\u093C", u"\u0915", {0, 2}},
          {"a vowel sign", u"\u0915\u093F", u"\u0915", kNowhere, NSRange{0, 1}},
      },
      mask392);
}

TEST(NSStringComparing, APrefixMayDifferInCaseAsWell) {
  const auto mask393 = kAnchored | kMarksAndWidth | kCase;
  ASSERT_EQ(std::uint64_t{mask393}, 393u);
  expectFound(
      {
          {"another case", u"Résumé", u"RESUME", {0, 6}},
          {"full-width in another case", u"ａｂｃ", u"AB", {0, 2}},
          {"a dotted capital I", u"İstanbul", u"istanbul", {0, 8}},
          {"a dotless i", u"ısı", u"isi", kNowhere},
          {"sharp s", u"STRASSE", u"straße", {0, 7}},
          {"not at the beginning", u"a résumé", u"resume", kNowhere},
      },
      mask393);
}

TEST(NSStringComparing, TheMasksDifferInCaseAlone) {
  for (auto [text, wanted] : {std::pair{u"Résumé", u"resume"}, {u"ＡＢＣ", u"abc"}, {u"A", u"a"}}) {
    EXPECT_EQ(find(text, wanted, kAnchored | kMarksAndWidth), kNowhere);
    EXPECT_EQ(find(text, wanted, kAnchored | kMarksAndWidth | kCase).location, 0u);
  }
}

TEST(NSStringComparing, WidthsCountUnlessToldOtherwise) {
  EXPECT_EQ(find(u"ＡＢＣ", u"ABC", kCase), kNowhere);
  EXPECT_EQ(find(u"ＡＢＣ", u"ABC", NSWidthInsensitiveSearch), (NSRange{0, 3}));
  EXPECT_EQ(find(u"a\u3000b", u"a b", NSWidthInsensitiveSearch), (NSRange{0, 3}));
}

TEST(NSStringComparing, AMarkWithoutALetterDoesNotCountAmongDiacritics) {
  EXPECT_EQ(find(u"\u0301abc", u"abc", NSDiacriticInsensitiveSearch), (NSRange{1, 3}));
  EXPECT_EQ(find(u"abc", u"\u0301", NSDiacriticInsensitiveSearch), kNowhere);
}

TEST(NSStringComparing, NothingIsFoundNowhere) {
  for (auto options : {kCase, kCase | kAnchored}) {
    EXPECT_EQ(find(u"abc", u"", options), kNowhere);
    EXPECT_EQ(find(u"", u"", options), kNowhere);
    EXPECT_EQ(find(u"", u"a", options), kNowhere);
    EXPECT_EQ("abc"_ns->rangeOfString(nullptr, options), kNowhere);
  }
}

TEST(NSStringComparing, LoneSurrogatesAreFoundAsTheyAre) {
  const std::u16string lone{u'A', 0xD83D, u'b'};
  EXPECT_EQ(find(lone, {u'a', 0xD83D}, kCase), (NSRange{0, 2}));
  EXPECT_EQ(find(u"😀", {0xD83D}, kCase), kNowhere) << "not half of a pair";
}

TEST(NSStringComparing, ASearchCostsNoMoreThanTheLengths) {
  // Every place matches to the last unit, or ends inside a letter. Quadratic time would be minutes.
  const std::u16string text(300'000, u'ß');
  std::u16string halves(300'001, u's');
  EXPECT_EQ(find(text, halves, kCase), kNowhere);
  halves.back() = u'b';
  EXPECT_EQ(find(text, halves, kCase), kNowhere);
  std::u16string marked = u"a", wanted = u"A";
  marked.append(300'000, u'\u0301').append(300'000, u'\u0323');
  wanted.append(300'000, u'\u0323').append(300'000, u'\u0301');
  EXPECT_EQ(find(marked, wanted, kCase), (NSRange{0, 600'001}));
}

/// The key of a text by ICU's functions on whole texts.
std::u16string keyByICU(const std::u16string& text) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* decomposer = icu::Normalizer2::getNFDInstance(status);
  icu::UnicodeString units = decomposer->normalize(icu::UnicodeString(text.c_str()), status);
  units = decomposer->normalize(units.foldCase(), status);
  return {units.getBuffer(), static_cast<std::size_t>(units.length())};
}

/// Tries every part of the text that ends between letters.
NSRange findSlowly(const std::u16string& text, const std::u16string& wanted) {
  auto isBetween = [&](std::size_t i) {
    return i == 0 || i == text.size() || (text[i] != u'\u0301' && text[i] != u'\u0327');
  };
  const std::u16string key = keyByICU(wanted);
  for (std::size_t from = 0; from < text.size(); ++from)
    for (std::size_t to = from + 1; to <= text.size(); ++to)
      if (isBetween(from) && isBetween(to) && keyByICU(text.substr(from, to - from)) == key)
        return {from, to - from};
  return kNowhere;
}

TEST(NSStringComparing, AnyTextIsFoundWhereASlowSearchFindsIt) {
  const std::u16string alphabet = u"aAßsSéEe\u0301\u0327\u0130iIı\uFB01f";
  std::mt19937 random(1);
  auto make = [&](std::size_t longest) {
    std::u16string text;
    for (std::size_t length = random() % longest; text.size() < length;)
      text += alphabet[random() % alphabet.size()];
    return text;
  };
  int found = 0;
  for (int round = 0; round < 5000; ++round) {
    const std::u16string text = make(16), wanted = make(4);
    const NSRange range = wanted.empty() ? kNowhere : findSlowly(text, wanted);
    ASSERT_EQ(find(text, wanted, kCase), range) << round;
    found += range != kNowhere;
  }
  EXPECT_GT(found, 500);
}

TEST(NSStringComparing, CaseDoesNotCountInAnOrder) {
  struct Pair {
    std::u16string a, b;
    NSComparisonResult order;
  };
  for (const auto& [a, b, order] : {Pair{u"abc", u"ABC", NSOrderedSame},
                                    {u"", u"", NSOrderedSame},
                                    {u"a", u"B", NSOrderedAscending},
                                    {u"B", u"a", NSOrderedDescending},
                                    {u"a", u"ab", NSOrderedAscending},
                                    {u"a", u"Ä", NSOrderedAscending},
                                    {u"Z", u"ä", NSOrderedAscending},
                                    {u"É", u"e\u0301", NSOrderedSame},
                                    {u"STRASSE", u"straße", NSOrderedSame},
                                    {u"I", u"ı", NSOrderedAscending},
                                    {u"Ａ", u"a", NSOrderedDescending},
                                    {u"\uD55C", u"\u1112\u1161\u11AB", NSOrderedSame}}) {
    EXPECT_EQ(units(a)->caseInsensitiveCompare(units(b)), order);
    EXPECT_EQ(units(b)->caseInsensitiveCompare(units(a)), -order);
  }
  EXPECT_EQ("a"_ns->caseInsensitiveCompare(nullptr), NSOrderedDescending);
}

}  // namespace
}  // namespace kbx
