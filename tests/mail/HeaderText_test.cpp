#include "mail/HeaderText.h"

#include <gtest/gtest.h>

#include "tests/mail/Messages.h"

namespace kbx {
namespace {

std::string textOf(std::string_view raw) {
  TextDecoder decoder;
  return headerText(raw, decoder);
}

TEST(HeaderText, DecodesBothEncodings) {
  EXPECT_EQ(textOf("=?utf-8?Q?caf=C3=A9_au_lait?="), "café au lait");
  EXPECT_EQ(textOf("=?UTF-8?b?Y2Fmw6k=?="), "café");
  EXPECT_EQ(textOf("=?iso-8859-1?q?caf=E9?="), "café");
  EXPECT_EQ(textOf("=?utf-8*fr?q?caf=C3=A9?="), "café");
}

TEST(HeaderText, BlanksBetweenNeighboursAreDroppedAndOthersStay) {
  EXPECT_EQ(textOf("=?utf-8?q?a?= =?utf-8?q?b?="), "ab");
  EXPECT_EQ(textOf("=?utf-8?q?a?=\n  =?iso-8859-1?q?b?="), "ab");
  EXPECT_EQ(textOf("=?utf-8?q?a?= b =?utf-8?q?c?="), "a b c");
}

TEST(HeaderText, ACharacterMayBeCutBetweenTwoWords) {
  EXPECT_EQ(textOf("=?utf-8?q?caf=C3?= =?UTF-8?q?=A9?="), "café");
  EXPECT_EQ(textOf("=?utf-8?b?Y2Fmww==?= =?utf-8?b?qQ==?="), "café");
}

TEST(HeaderText, WordsCountWhereverTheyStand) {
  EXPECT_EQ(textOf("Re:=?utf-8?q?caf=C3=A9?=!"), "Re:café!");
  EXPECT_EQ(textOf("\"=?utf-8?q?caf=C3=A9?=\""), "\"café\"");
}

TEST(HeaderText, BrokenWordsAreText) {
  EXPECT_EQ(textOf("=?utf-8?q?open"), "=?utf-8?q?open");
  EXPECT_EQ(textOf("=?utf-8?x?a?="), "=?utf-8?x?a?=");
  EXPECT_EQ(textOf("=??q?a?="), "=??q?a?=");
  EXPECT_EQ(textOf("=?utf-8?b?"), "=?utf-8?b?");
}

TEST(HeaderText, WordsWithBlanksAndWithoutPaddingAreDecoded) {
  EXPECT_EQ(textOf("=?utf-8?q?two words?="), "two words");
  EXPECT_EQ(textOf("=?utf-8?b?Y2Fmw6k?="), "café");
  EXPECT_EQ(textOf("=?utf-8?q?100=?="), "100=");
  EXPECT_EQ(textOf("=?utf-8?q?=zz=4?="), "=zz=4");
}

TEST(HeaderText, LinesAreUnfolded) {
  EXPECT_EQ(textOf(" one\n two\r\n\tthree\n"), "one two three");
}

TEST(HeaderText, BytesWithoutACharsetAreWhatTheyLookLike) {
  EXPECT_EQ(textOf("caf\xC3\xA9"), "café");
  EXPECT_EQ(textOf(std::string_view("a\0b", 3)), "ab");
  EXPECT_EQ(textOf("=?nonsense?q?caf=C3=A9?="), "café");
}

TEST(HeaderText, BeginningsWithoutEndsCostTimeInProportion) {
  const std::string text = repeated("=?a?q?", 500000);
  EXPECT_TRUE(textOf(text) == text);
}

}  // namespace
}  // namespace kbx
