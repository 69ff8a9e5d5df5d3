#include "platform/text/ComposedCharacters.h"

#include <gtest/gtest.h>
#include <unicode/ubrk.h>

#include <random>
#include <string>
#include <vector>

#include "platform/objects/NSException.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using Lengths = std::vector<std::size_t>;

/// The lengths of the sequences, walking forwards; each must also be found from all its units.
Lengths sequences(const std::u16string& units) {
  const Ref<NSString> text = NSString::stringWithUTF16(units);
  ComposedCharacters characters(text);
  Lengths lengths;
  for (std::size_t start = 0; start < units.size();) {
    const std::size_t end = characters.endOfSequenceAt(start);
    for (std::size_t i = start; i < end; ++i) {
      EXPECT_EQ(characters.startOfSequenceAt(i), start) << i;
      EXPECT_EQ(characters.endOfSequenceAt(i), end) << i;
    }
    lengths.push_back(end - start);
    start = end;
  }
  return lengths;
}

/// The same by ICU's own walk over the whole text, with a carriage return and a line feed apart.
Lengths sequencesByICU(const std::u16string& units) {
  UErrorCode status = U_ZERO_ERROR;
  UBreakIterator* iterator =
      ubrk_open(UBRK_CHARACTER, "", units.data(), static_cast<std::int32_t>(units.size()), &status);
  Lengths lengths;
  for (std::int32_t start = 0, end; (end = ubrk_next(iterator)) != UBRK_DONE; start = end) {
    if (units[static_cast<std::size_t>(start)] == u'\r' && end - start == 2)
      lengths.insert(lengths.end(), {1, 1});
    else
      lengths.push_back(static_cast<std::size_t>(end - start));
  }
  ubrk_close(iterator);
  return lengths;
}

TEST(ComposedCharacters, WhatAReaderSeesAsOneStaysWhole) {
  struct Case {
    const char* rule;
    std::u16string text;
    Lengths lengths;  // by another implementation of the Unicode rules
  };
  for (const auto& [rule, text, lengths] : {
           Case{"plain letters", u"abc", {1, 1, 1}},
           {"composed letters", u"\u00E9\u00DF", {1, 1}},
           {"a base and its mark", u"e\u0301x", {2, 1}},
           {"a base and two marks", u"o\u0327\u030Bx", {3, 1}},
           {"a mark without a base", u"\u0301e", {1, 1}},
           {"a pair", u"a\U0001F600b", {1, 2, 1}},
           {"Hangul syllables", u"\uD558\uB098", {1, 1}},
           {"Hangul of jamo", u"\u1100\u1161\u11A8\u1100\u1161", {3, 2}},
           {"a syllable and a final jamo", u"\uAC00\u11A8", {2}},
           {"Devanagari with a vowel sign", u"\u0928\u093F\u0928", {2, 1}},
           {"Tamil", u"\u0BA4\u0BAE\u0BBF\u0BB4\u0BCD", {1, 2, 2}},
           {"Thai", u"\u0E01\u0E47\u0E33", {3}},
           {"half-width kana and its mark", u"\uFF76\uFF9E", {2}},
           {"two flags", u"🇩🇪🇫🇷", {4, 4}},
           {"a flag and a half", u"🇩🇪🇫", {4, 2}},
           {"a joined emoji", u"👩\u200D🚀", {5}},
           {"a family", u"👨\u200D👩\u200D👧\u200D👦", {11}},
           {"a skin tone", u"👍🏽", {4}},
           {"a keycap", u"1\uFE0F\u20E3", {3}},
           {"a sign shown as emoji", u"\u00A9\uFE0F", {2}},
           {"the flag of Scotland",
            u"🏴\U000E0067\U000E0062\U000E0073\U000E0063\U000E0074\U000E007F",
            {14}},
           {"a joiner between letters", u"x\u200Dy", {2, 1}},
           {"a sign that stands before its base", u"\u0600a", {2}},
           {"a carriage return and a line feed", u"a\r\nb", {1, 1, 1, 1}},
           {"the same beside marks", u"e\u0301\r\ne\u0301", {2, 1, 1, 2}},
           {"a line feed takes no mark", u"\n\u0301", {1, 1}},
           {"lone surrogates", {u'a', 0xDE00, 0xD83D, u'b'}, {1, 1, 1, 1}},
       }) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(sequences(text), lengths);
    EXPECT_EQ(sequencesByICU(text), lengths);
  }
}

TEST(ComposedCharacters, PlainNeighboursAreBoundariesWithoutAQuestion) {
  // What the short way relies on: below U+0300 nothing joins, except CR LF.
  for (char16_t first = 0; first < 0x300; first = static_cast<char16_t>(first + 7)) {
    std::u16string text;
    for (char16_t second = 0; second < 0x300; ++second) text += {first, second};
    EXPECT_EQ(sequencesByICU(text).size(), text.size()) << int{first};
  }
}

TEST(ComposedCharacters, AnyTextFallsApartAsByICU) {
  const std::u16string alphabet =
      u"ae\r\n\u0301\u0327\u1100\u1161\u11A8\uAC00\u0915\u094D\u093F\u200D\uFE0F\u20E3\u0600🇩🇪👩"
      u"🏽"
      u"🚀";
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    std::u16string text;
    for (std::size_t length = random() % 40; text.size() < length;)
      text += alphabet[random() % alphabet.size()];
    EXPECT_EQ(sequences(text), sequencesByICU(text)) << round;
  }
}

TEST(ComposedCharacters, TwoWalksCanGoOnAtOnce) {
  auto first = NSString::stringWithUTF16(u"e\u0301"),
       second = NSString::stringWithUTF16(u"ae\u0301");
  ComposedCharacters one(first), other(second);
  EXPECT_EQ(one.endOfSequenceAt(0), 2u);
  EXPECT_EQ(other.endOfSequenceAt(1), 3u);
  EXPECT_EQ(one.startOfSequenceAt(1), 0u);
  EXPECT_EQ(other.startOfSequenceAt(2), 1u);
}

TEST(ComposedCharacters, AManyThousandfoldSequenceIsOne) {
  const std::u16string text = u"a" + std::u16string(100000, u'\u0301') + u"b";
  const Ref<NSString> string = NSString::stringWithUTF16(text);
  EXPECT_EQ(string->rangeOfComposedCharacterSequenceAtIndex(50000), (NSRange{0, 100001}));
}

TEST(ComposedCharacters, ARangeIsThatOfTheWholeSequence) {
  auto text = NSString::stringWithUTF16(u"xe\u0301y");
  EXPECT_EQ(text->rangeOfComposedCharacterSequenceAtIndex(0), (NSRange{0, 1}));
  EXPECT_EQ(text->rangeOfComposedCharacterSequenceAtIndex(1), (NSRange{1, 2}));
  EXPECT_EQ(text->rangeOfComposedCharacterSequenceAtIndex(2), (NSRange{1, 2}));
  EXPECT_EQ(text->rangeOfComposedCharacterSequenceAtIndex(3), (NSRange{3, 1}));
  EXPECT_EQ("ab"_ns->rangeOfComposedCharacterSequenceAtIndex(1), (NSRange{1, 1}));
}

TEST(ComposedCharacters, AnIndexBeyondTheTextRaises) {
  EXPECT_THROW(""_ns->rangeOfComposedCharacterSequenceAtIndex(0), Raised);
  EXPECT_THROW("é"_ns->rangeOfComposedCharacterSequenceAtIndex(1), Raised);
}

}  // namespace
}  // namespace kbx
