#include "mail/TextDecoder.h"

#include <gtest/gtest.h>

#include "platform/text/UTF8.h"

namespace kbx {
namespace {

std::string textOf(std::string bytes, std::string_view charset) {
  return TextDecoder().text(std::move(bytes), charset);
}

TEST(TextDecoder, TheDeclaredCharsetIsTriedFirst) {
  EXPECT_EQ(textOf("caf\xE9", "ISO-8859-1"), "café");
  EXPECT_EQ(textOf("\xC4\xC1", "KOI8-R"), "да");
  EXPECT_EQ(textOf("\x93quoted\x94", "iso-8859-1"), "“quoted”");
  EXPECT_EQ(textOf("\x93\xFD\x94", "ISO-8859-9"), "“ı”");
  EXPECT_EQ(textOf("\xC4\xE3\xBA\xC3", "gb2312"), "你好");
}

TEST(TextDecoder, Latin1HasManyNames) {
  for (std::string_view name : {"latin1", "Latin-1", "l1", "ISO_8859-1", "ISO8859-1", "iso88591"})
    EXPECT_EQ(textOf("\x93quoted\x94", name), "“quoted”") << name;
}

TEST(TextDecoder, ANameMayStandInQuotesOrHaveSomethingBehindIt) {
  for (std::string_view name : {"'koi8-r'", " koi8-r ", "koi8-r (Russian)", "koi8-r;", "koi8-r, x"})
    EXPECT_EQ(textOf("\xC4\xC1", name), "да") << name;
}

TEST(TextDecoder, UTF8IsRecognisedUnderAWrongName) {
  EXPECT_EQ(textOf("caf\xC3\xA9", "us-ascii"), "café");
  EXPECT_EQ(textOf("caf\xC3\xA9", ""), "café");
  EXPECT_EQ(textOf("caf\xC3\xA9", "x-unknown"), "café");
  EXPECT_EQ(textOf("caf\xC3\xA9 \xF0\x9F\x98\x80", "shift_jis"), "café 😀");
}

TEST(TextDecoder, UTF8ComesBeforeWhatIsNearlyAllOfTheDeclaredCharset) {
  std::string text = "\xE2\x82\xAC";
  for (int i = 0; i < 30; ++i) text += "\xC3\xA9";
  EXPECT_EQ(textOf(text, "euc-kr"), text);
}

TEST(TextDecoder, ABrokenCharacterDoesNotCostTheOthers) {
  const std::string much = "é è à ù ê ô ç ï ü ë œ æ";
  EXPECT_EQ(textOf(much + " \xFF", "utf-8"), much + " \xEF\xBF\xBD");
}

TEST(TextDecoder, WhatNobodyKnowsIsGuessedOrWindows1252) {
  EXPECT_EQ(textOf("\x81", "utf-8").empty(), false);
  EXPECT_EQ(textOf("r\xE9sum\xE9 d'\xE9t\xE9 \xE0 No\xEBl", "x-unknown"), "résumé d'été à Noël");
}

TEST(TextDecoder, NULsAndMarksAreDropped) {
  EXPECT_EQ(textOf(std::string("a\0b", 3), "utf-8"), "ab");
  EXPECT_EQ(textOf(std::string("a\0b", 3), "iso-8859-2"), "ab");
  EXPECT_EQ(textOf("\xEF\xBB\xBFhi", "utf-8"), "hi");
  EXPECT_EQ(textOf(std::string("\xFF\xFEh\0i\0", 6), "utf-16"), "hi");
  EXPECT_EQ(textOf(std::string("\xFF\xFEh\0i\0", 6), ""), "hi");
}

TEST(TextDecoder, NamesThatAreNoneAreNotAskedFor) {
  const std::string tooLong(5000, 'x');
  for (const std::string& name : {std::string("../../etc/passwd"), std::string("utf-8,version=1"),
                                  std::string("a b"), tooLong})
    EXPECT_EQ(textOf("caf\xC3\xA9", name), "café") << name;
}

TEST(TextDecoder, TheResultIsAlwaysUTF8) {
  TextDecoder decoder;
  for (std::string charset : {"", "utf-8", "utf-7", "utf-16", "iso-2022-jp", "big5", "x"})
    for (int i = 0; i < 256; ++i) {
      std::string bytes = {'a', static_cast<char>(i), static_cast<char>(255 - i), 'z'};
      EXPECT_TRUE(isUTF8(decoder.text(bytes, charset))) << charset << " " << i;
    }
}

}  // namespace
}  // namespace kbx
