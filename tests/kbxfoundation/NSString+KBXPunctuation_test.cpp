#include "NSString+KBXPunctuation.h"

#include <gtest/gtest.h>

#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSStringKBXPunctuation, EachIsATextOfOneCharacter) {
  struct Case {
    Ref<NSString> string;
    char16_t character;
  };
  for (const auto& [string, character] : {Case{kbxEllipsis(), 0x2026},
                                          {kbxEnDash(), 0x2013},
                                          {kbxEmDash(), 0x2014},
                                          {kbxLeftDoubleQuote(), 0x201C},
                                          {kbxRightDoubleQuote(), 0x201D},
                                          {kbxLeftSingleQuote(), 0x2018},
                                          {kbxRightSingleQuote(), 0x2019},
                                          {kbxLeftDoubleGuillemet(), 0x00AB},
                                          {kbxRightDoubleGuillemet(), 0x00BB},
                                          {kbxLeftSingleGuillemet(), 0x2039},
                                          {kbxRightSingleGuillemet(), 0x203A}}) {
    ASSERT_EQ(string->length(), 1u);
    EXPECT_EQ(string->characterAtIndex(0), character);
  }
}

TEST(NSStringKBXPunctuation, AQuotedTextStandsBetweenDoubleQuotes) {
  EXPECT_EQ(text(kbxDoubleQuotedString("a é"_ns)), "“a é”");
  EXPECT_EQ(text(kbxDoubleQuotedString(""_ns)), "“”");
  EXPECT_EQ(kbxDoubleQuotedString(nullptr), nullptr);
}

}  // namespace
}  // namespace kbx
