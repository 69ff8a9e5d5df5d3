#include "mail/FlowedText.h"

#include <gtest/gtest.h>

namespace kbx {
namespace {

TEST(FlowedText, LinesThatEndInABlankGoOn) {
  EXPECT_EQ(textFromFlowed("one \ntwo\nthree\n", false), "one two\nthree\n");
}

TEST(FlowedText, TheBlankMayBelongToTheBreak) {
  EXPECT_EQ(textFromFlowed("har \nbour\n", true), "harbour\n");
}

TEST(FlowedText, QuotesAreJoinedAtTheirOwnDepth) {
  EXPECT_EQ(textFromFlowed("> one \n> two\n>> deep \nmine\n", false),
            "> one two\n>> deep \nmine\n");
}

TEST(FlowedText, StuffedBlanksGo) {
  EXPECT_EQ(textFromFlowed(" >no quote\n", false), ">no quote\n");
}

TEST(FlowedText, ASignatureIsALineOfItsOwn) {
  EXPECT_EQ(textFromFlowed("bye \n-- \nAda\n", false), "bye \n-- \nAda\n");
}

TEST(FlowedText, TheLastLineMayLackItsEnd) {
  EXPECT_EQ(textFromFlowed("one \r\ntwo", false), "one two\n");
  EXPECT_EQ(textFromFlowed("one ", false), "one ");
  EXPECT_EQ(textFromFlowed("", false), "");
}

}  // namespace
}  // namespace kbx
