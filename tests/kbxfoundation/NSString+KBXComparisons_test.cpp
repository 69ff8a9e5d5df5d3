#include "NSString+KBXComparisons.h"

#include <gtest/gtest.h>

#include "platform/text/CompareOptions.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSStringKBXComparisons, TheOrderForDisplayIsThatOfAList) {
  struct Case {
    const char *rule, *a, *b;
    NSComparisonResult order;
  };
  // What no language orders in another way.
  for (auto [rule, a, b, order] : {Case{"case does not count", "ABC", "abc", NSOrderedSame},
                                   {"letters, not codes", "a", "B", NSOrderedAscending},
                                   {"numbers by their value", "2", "10", NSOrderedAscending},
                                   {"inside a text too", "a10b", "A9b", NSOrderedDescending},
                                   {"leading zeros do not count", "a01", "A1", NSOrderedSame},
                                   {"the shorter first", "a", "ab", NSOrderedAscending},
                                   {"Cyrillic case", "МИР", "мир", NSOrderedSame},
                                   {"composed or not", "É", "e\u0301", NSOrderedSame}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(kbxCompareForDisplay(string(a), string(b)), order);
    EXPECT_EQ(kbxCompareForDisplay(string(b), string(a)), -order);
  }
}

TEST(NSStringKBXComparisons, TheOrderForDisplayDiffersFromThatWithoutCase) {
  EXPECT_EQ(kbxCompareForDisplay("9"_ns, "10"_ns), NSOrderedAscending);
  EXPECT_EQ("9"_ns->caseInsensitiveCompare("10"_ns), NSOrderedDescending) << "no numbers";
  EXPECT_EQ(kbxCompareForDisplay("_"_ns, "A"_ns), NSOrderedAscending);
  EXPECT_EQ(kbxCompareForDisplay("~"_ns, "a"_ns), NSOrderedAscending);
  EXPECT_EQ("~"_ns->caseInsensitiveCompare("a"_ns), NSOrderedDescending) << "codes, not a language";
}

TEST(NSStringKBXComparisons, LengthsAloneDecideInTheOrderOfLengths) {
  EXPECT_EQ(kbxCompareLength("b"_ns, "aa"_ns), -1);
  EXPECT_EQ(kbxCompareLength("ab"_ns, "ba"_ns), 0);
  EXPECT_EQ(kbxCompareLength("aa"_ns, "z"_ns), 1);
  EXPECT_EQ(kbxCompareLength("😀"_ns, "é"_ns), 1) << "a pair is two units";
  EXPECT_EQ(kbxCompareLength(""_ns, ""_ns), 0);
}

TEST(NSStringKBXComparisons, AnAbsentArgumentComesFirst) {
  EXPECT_EQ(kbxCompareForDisplay(""_ns, nullptr), NSOrderedDescending);
  EXPECT_EQ(kbxCompareLength("a"_ns, nullptr), NSOrderedDescending);
  EXPECT_EQ(kbxCompareLength(""_ns, nullptr), NSOrderedSame);
}

TEST(NSStringKBXComparisons, AnAbsentReceiverIsTheSameAsAnything) {
  EXPECT_EQ(kbxCompareForDisplay(nullptr, "a"_ns), NSOrderedSame);
  EXPECT_EQ(kbxCompareLength(nullptr, "a"_ns), NSOrderedSame);
}

}  // namespace
}  // namespace kbx
