#include "NSString+KBXComposedCharacters.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSString> units(const std::u16string& text) { return NSString::stringWithUTF16(text); }

// ---- kbxRangeOfComposedCharacterSequencesInRange ----------------------------------------------

TEST(NSStringKBXComposedCharacters, ARangeIsWidenedToWholeCharacters) {
  struct Case {
    const char* rule;
    std::u16string text;
    NSRange range, widened;
  };
  for (const auto& [rule, text, range, widened] :
       {Case{"plain text is as it is", u"abcd", {1, 2}, {1, 2}},
        {"all of it", u"abcd", {0, 4}, {0, 4}},
        {"a mark has its base", u"xe\u0301y", {2, 1}, {1, 2}},
        {"a base has its mark", u"xe\u0301y", {1, 1}, {1, 2}},
        {"at both ends", u"e\u0301e\u0301", {1, 2}, {0, 4}},
        {"half a pair", u"a😀b", {2, 1}, {1, 2}},
        {"half a flag", u"🇩🇪🇫🇷", {2, 1}, {0, 4}},
        {"the end of one flag and the beginning of the next", u"🇩🇪🇫🇷", {3, 2}, {0, 8}},
        {"a part of a joined emoji", u"👩\u200D🚀!", {3, 1}, {0, 5}},
        {"a jamo of a syllable", u"\u1100\u1161\u11A8", {1, 1}, {0, 3}},
        {"a vowel sign", u"\u0939\u093F\u0928", {1, 1}, {0, 2}},
        {"a line feed is not its carriage return", u"\r\n", {1, 1}, {1, 1}},
        {"the same beside other text", u"é\r\n", {2, 1}, {2, 1}},
        {"an empty range between characters", u"abc", {2, 0}, {2, 0}},
        {"an empty range inside a character", u"ae\u0301b", {2, 0}, {1, 2}}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(kbxRangeOfComposedCharacterSequencesInRange(units(text), range), widened);
  }
}

TEST(NSStringKBXComposedCharacters, ARangeOutsideTheTextRaises) {
  struct Case {
    const char* rule;
    NSString* string;
    NSRange range;
    const char* reason;
  };
  for (auto [rule, string, range, reason] :
       {Case{"at the end", "abc"_ns, {3, 0}, "Invalid range {3, 0}."},
        {"beyond the end", "abc"_ns, {4, 1}, "Invalid range {4, 1}."},
        {"past the end", "aé"_ns, {1, 2}, "Invalid range {1, 2}."},
        {"in an empty text", ""_ns, {0, 0}, "Invalid range {0, 0}."},
        {"nothing at the beginning", "abc"_ns, {0, 0}, "Invalid range {0, 0}."},
        {"a sum that overflows",
         "abc"_ns,
         {2, UINT64_MAX - 1},
         "Invalid range {2, 18446744073709551614}."},
        {"a sum that is 0", "abc"_ns, {1, UINT64_MAX}, "Invalid range {1, 18446744073709551615}."},
        {"not found", "abc"_ns, kRangeNotFound, "Invalid range {9223372036854775807, 0}."}}) {
    SCOPED_TRACE(rule);
    auto exception = raisedBy([&, string = string, range = range] {
      kbxRangeOfComposedCharacterSequencesInRange(string, range);
    });
    ASSERT_NE(exception, nullptr);
    EXPECT_EQ(text(exception->name()), "NSRangeException");
    EXPECT_EQ(text(exception->reason()), reason);
  }
}

// ---- Cutting by composed characters -----------------------------------------------------------

TEST(NSStringKBXComposedCharacters, ACutIsBeforeTheCharacterAtTheIndex) {
  auto string = units(u"ae\u0301😀b");
  for (auto [index, length] : {std::pair{0u, 0u}, {1u, 1u}, {2u, 1u}, {3u, 3u}, {4u, 3u}, {5u, 5u}})
    EXPECT_EQ(kbxSubstringToComposedIndex(string, index)->length(), length) << index;
  EXPECT_EQ(text(kbxSubstringToComposedIndex("abc"_ns, 2)), "ab");
}

TEST(NSStringKBXComposedCharacters, ACutAtTheEndOrBeyondIsACopy) {
  for (NSString* string : {"abc"_ns, "aé"_ns, ""_ns}) {
    for (std::size_t index : {string->length(), std::size_t{99}, SIZE_MAX}) {
      auto copy = kbxSubstringToComposedIndex(string, index);
      EXPECT_TRUE(isEqual(copy, string));
      EXPECT_FALSE(isSame(copy.get(), string));
    }
  }
}

TEST(NSStringKBXComposedCharacters, ChoppingTakesTheLastCharacterWhole) {
  struct Case {
    const char* rule;
    std::u16string text, chopped;
  };
  for (const auto& [rule, text, chopped] :
       {Case{"a letter", u"abc", u"ab"},
        {"a letter and its mark", u"abe\u0301", u"ab"},
        {"a pair", u"a😀", u"a"},
        {"a flag", u"🇩🇪🇫🇷", u"🇩🇪"},
        {"a family", u"x👨\u200D👩\u200D👧", u"x"},
        {"a skin tone", u"x👍🏽", u"x"},
        {"a syllable of jamo", u"\uAC00\u1100\u1161\u11A8", u"\uAC00"},
        {"a line feed alone", u"a\r\n", u"a\r"},
        {"the only character", u"e\u0301", u""},
        {"one unit", u"a", u""},
        {"nothing", u"", u""}}) {
    SCOPED_TRACE(rule);
    EXPECT_TRUE(isEqual(kbxStringByChoppingComposedCharacter(units(text)), units(chopped)));
  }
}

// ---- kbxStringByTruncatingMiddleAfterComposedLength --------------------------------------------

TEST(NSStringKBXComposedCharacters, TheMiddleGivesWayToAnEllipsis) {
  struct Case {
    const char* rule;
    std::u16string text;
    std::size_t length;
    std::u16string truncated;
  };
  for (const auto& [rule, text, length, truncated] :
       {Case{"three at each end", u"abcdefg", 3, u"abc…efg"},
        {"one at each end", u"abcd", 1, u"a…d"},
        {"none", u"abc", 0, u"…"},
        {"a mark goes with its base", u"abe\u0301cde\u0301", 3, u"ab…de\u0301"},
        {"a base goes with its mark", u"abcde\u0301f", 2, u"ab…f"},
        {"a flag goes whole", u"a🇩🇪🇫🇷b", 3, u"a…b"},
        {"and one that is not touched stays", u"a🇩🇪xyz🇫🇷b", 5, u"a🇩🇪…🇫🇷b"}}) {
    SCOPED_TRACE(rule);
    EXPECT_TRUE(isEqual(kbxStringByTruncatingMiddleAfterComposedLength(units(text), length),
                        units(truncated)));
  }
}

TEST(NSStringKBXComposedCharacters, ATextThatIsShortEnoughStaysWhole) {
  for (NSString* string : {"abcdefg"_ns, "abcdef"_ns, "aé"_ns, ""_ns}) {
    for (std::size_t length :
         {string->length() - string->length() / 2, std::size_t{4}, SIZE_MAX / 2 + 1, SIZE_MAX}) {
      auto copy = kbxStringByTruncatingMiddleAfterComposedLength(string, length);
      EXPECT_TRUE(isEqual(copy, string));
      EXPECT_FALSE(isSame(copy.get(), string));
    }
  }
}

// ---- kbxStringByAddingSuffix --------------------------------------------------------------------

TEST(NSStringKBXComposedCharacters, TheStemIsTrimmedUntilItFitsWithItsSuffix) {
  struct Case {
    const char* rule;
    std::u16string stem, suffix;
    std::size_t total;
    std::u16string result;
  };
  for (const auto& [rule, stem, suffix, total, result] :
       {Case{"enough room", u"abc", u".txt", 9, u"abc.txt"},
        {"just enough", u"abcdef", u".txt", 10, u"abcdef.txt"},
        {"the end of the stem goes", u"abcdef", u".txt", 8, u"abcd.txt"},
        {"all of it goes", u"abcdef", u".txt", 4, u".txt"},
        {"a mark goes with its base", u"abce\u0301", u".txt", 8, u"abc.txt"},
        {"a composed letter is as long as its parts", u"abc\u00E9", u".txt", 8, u"abc.txt"},
        {"and stays where they fit", u"abc\u00E9", u".txt", 9, u"abc\u00E9.txt"},
        {"a composed suffix as well", u"abcd", u"\u00E9", 4, u"ab\u00E9"},
        {"a syllable is three jamo", u"a\uAC01", u".", 4, u"a."},
        {"a flag goes whole", u"ab🇩🇪", u".x", 7, u"ab.x"},
        {"a family goes whole", u"a👨\u200D👩\u200D👧", u"", 8, u"a"},
        {"no suffix", u"abcdef", u"", 3, u"abc"},
        {"no room and nothing to add", u"abc", u"", 0, u""},
        {"no stem", u"", u"abc", 3, u"abc"}}) {
    SCOPED_TRACE(rule);
    EXPECT_TRUE(isEqual(kbxStringByAddingSuffix(units(stem), units(suffix), total), units(result)));
  }
}

TEST(NSStringKBXComposedCharacters, ASuffixTooLongOnlyInPartsLeavesNothingOfTheStem) {
  EXPECT_EQ(text(kbxStringByAddingSuffix("abc"_ns, "ö"_ns, 1)), "ö");
}

TEST(NSStringKBXComposedCharacters, ASuffixLongerThanTheTotalIsAProgrammingError) {
  RecordingLog log;
  auto exception = raisedBy([] { kbxStringByAddingSuffix("abc"_ns, ".text"_ns, 4); });
  ASSERT_NE(exception, nullptr);
  EXPECT_EQ(text(exception->name()), "KBXAssertionFailedException");
  EXPECT_EQ(text(exception->reason()),
            "suffix: '.text' length: 4 at NSString+KBXBasics:150 "
            "-kbxStringByAddingSuffix:trimmingStemToTotal:");
  EXPECT_EQ(log.lines(), (std::vector<std::string>{
                             "NSString+KBXBasics:150 -kbxStringByAddingSuffix:trimmingStemToTotal:"
                             ": Assertion Failed: suffix: '.text' length: 4"}));
}

TEST(NSStringKBXComposedCharacters, AnAbsentSuffixRaises) {
  EXPECT_EQ(nameRaisedBy([] { kbxStringByAddingSuffix("abc"_ns, nullptr, 4); }),
            "NSInvalidArgumentException");
}

TEST(NSStringKBXComposedCharacters, TrimmingALongStemTakesNoMoreThanOneWalk) {
  // Measuring the whole stem for each character that goes would be minutes.
  for (const char* character : {"a", "é", "e\u0301", "🇩", "가", "👩\u200D"}) {
    std::string stem;
    for (int i = 0; i < 200'000; ++i) stem += character;
    EXPECT_EQ(text(kbxStringByAddingSuffix(string(stem), ".txt"_ns, 4)), ".txt");
    const std::size_t longest = kbxStringByAddingSuffix(string(stem), ".txt"_ns, 199'000)->length();
    EXPECT_LE(longest, 199'000u);
  }
}

TEST(NSStringKBXComposedCharacters, AnAbsentTextStaysAbsent) {
  EXPECT_EQ(kbxRangeOfComposedCharacterSequencesInRange(nullptr, {1, 1}), (NSRange{0, 0}));
  EXPECT_EQ(kbxSubstringToComposedIndex(nullptr, 1), nullptr);
  EXPECT_EQ(kbxStringByChoppingComposedCharacter(nullptr), nullptr);
  EXPECT_EQ(kbxStringByTruncatingMiddleAfterComposedLength(nullptr, 1), nullptr);
  EXPECT_EQ(kbxStringByAddingSuffix(nullptr, "a"_ns, 1), nullptr);
}

}  // namespace
}  // namespace kbx
