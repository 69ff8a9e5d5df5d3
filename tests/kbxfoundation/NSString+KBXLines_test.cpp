#include "NSString+KBXLines.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Text.h"

namespace kbx {
namespace {

/// The lines, each in brackets.
std::string lines(const std::string& sample) {
  std::string all;
  const Ref<NSArray> lines = kbxComponentsSeparatedByLineSeparators(string(sample));
  for (const Ref<NSObject>& line : *lines) all += "[" + text(line) + "]";
  return all;
}

TEST(NSStringKBXLines, EachLineIsAnElementWithoutItsTerminator) {
  struct Case {
    const char *rule, *text, *lines;
  };
  for (auto [rule, sample, expected] :
       {Case{"nothing has no line", "", ""},
        {"one line", "a", "[a]"},
        {"a final terminator makes no line", "a\nb\n", "[a][b]"},
        {"an empty line between two does", "a\n\nb", "[a][][b]"},
        {"and one at the beginning", "\na", "[][a]"},
        {"two at the end make one", "a\n\n", "[a][]"},
        {"a terminator alone", "\n", "[]"},
        {"every terminator", "a\nb\rc\r\nd\u0085e\u2028f\u2029g", "[a][b][c][d][e][f][g]"},
        {"a pair is one, reversed it is two", "a\r\n\n\rb", "[a][][][b]"},
        {"tabs and feeds end nothing", "a\tb\vc\fd", "[a\tb\vc\fd]"},
        {"other text", "é\r\n日本\n😀", "[é][日本][😀]"}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(lines(sample), expected);
  }
  EXPECT_EQ(kbxComponentsSeparatedByLineSeparators(nullptr), nullptr);
}

TEST(NSStringKBXLines, ManyLinesTakeNoMoreThanOneWalk) {
  std::string sample;
  for (int i = 0; i < 200'000; ++i) sample += "é\r\n";
  EXPECT_EQ(kbxComponentsSeparatedByLineSeparators(string(sample))->count(), 200'000u);
}

TEST(NSStringKBXLines, EveryLineBreakBecomesALineFeed) {
  struct Case {
    const char *rule, *text, *normalized;
  };
  for (auto [rule, sample, normalized] : {Case{"a pair is one break", "a\r\nb", "a\nb"},
                                          {"a lone return counts", "a\rb", "a\nb"},
                                          {"a return before a pair", "a\r\r\nb", "a\n\nb"},
                                          {"a pair at the end", "a\r\n", "a\n"},
                                          {"a return at the end", "a\r", "a\n"},
                                          {"a feed before a return", "a\n\rb", "a\n\nb"},
                                          {"other text", "é\r\n日\r", "é\n日\n"},
                                          {"other breaks stay", "\r\u2028", "\n\u2028"}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(text(kbxStringByNormalizingLineBreaks(string(sample))), normalized);
  }
  EXPECT_EQ(kbxStringByNormalizingLineBreaks(nullptr), nullptr);
}

TEST(NSStringKBXLines, ATextWithoutAReturnIsCopied) {
  for (NSString* string : {"a\nb"_ns, "é\n"_ns, ""_ns}) {
    auto copy = kbxStringByNormalizingLineBreaks(string);
    EXPECT_TRUE(isEqual(copy, string));
    EXPECT_FALSE(isSame(copy.get(), string));
  }
}

}  // namespace
}  // namespace kbx
