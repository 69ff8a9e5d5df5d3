#include "platform/text/PercentEscapes.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace std::string_literals;

constexpr const char* kAbsent = "(null)";

TEST(PercentEscapes, EscapesAreReplacedByWhatTheyStandFor) {
  struct Case {
    const char *rule, *text, *replaced;
  };
  for (auto [rule, sample, replaced] : {Case{"plain text stays", "plain", "plain"},
                                        {"nothing stays", "", ""},
                                        {"one byte", "a%20b", "a b"},
                                        {"digits of either case", "%4a%4B", "JK"},
                                        {"two bytes are one character", "%C3%A9", "é"},
                                        {"four bytes too", "x%F0%9F%98%80y", "x😀y"},
                                        {"a percent sign", "100%25", "100%"},
                                        {"only once", "%2541", "%41"},
                                        {"a plus sign stays", "a+b", "a+b"},
                                        {"other characters stay", "é%C3%A9日", "éé日"},
                                        {"a cut escape", "%", kAbsent},
                                        {"a half one", "a%4", kAbsent},
                                        {"no digits", "%zz", kAbsent},
                                        {"a digit and something else", "%4é", kAbsent},
                                        {"a sign is no digit", "%+4", kAbsent},
                                        {"a malformed one behind a good one", "%41%4", kAbsent},
                                        {"a byte that begins nothing", "%FF", kAbsent},
                                        {"a sequence cut short", "%C3", kAbsent},
                                        {"cut by a character", "%C3x%A9", kAbsent},
                                        {"an overlong form", "%C0%80", kAbsent},
                                        {"a surrogate", "%ED%A0%80", kAbsent}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(text(stringByReplacingPercentEscapes(string(sample), ""_ns)), replaced);
  }
  EXPECT_EQ(stringByReplacingPercentEscapes("a%00b"_ns, ""_ns)->length(), 3u);
}

TEST(PercentEscapes, AFullWidthDigitIsNone) {
  EXPECT_EQ(stringByReplacingPercentEscapes("%４1"_ns, ""_ns), nullptr);
  EXPECT_EQ(stringByReplacingPercentEscapes("é%\u0134\u0131"_ns, ""_ns), nullptr);
}

TEST(PercentEscapes, SomeEscapesMayStayAsTheyAreWritten) {
  struct Case {
    const char *text, *toLeave, *replaced;
  };
  for (auto [sample, toLeave, replaced] : {Case{"%2f%20%2F", "/", "%2f %2F"},
                                           {"%c3%A9%41", "é", "%c3%A9A"},
                                           {"%F0%9F%98%80%20", "😀", "%F0%9F%98%80 "},
                                           {"%25%41", "%", "%25A"},
                                           {"%41%4", "A", kAbsent},
                                           {"%41%FF", "A", kAbsent}})
    EXPECT_EQ(text(stringByReplacingPercentEscapes(string(sample), string(toLeave))), replaced);
}

TEST(PercentEscapes, WithoutTheListNothingIsReplaced) {
  EXPECT_EQ(text(stringByReplacingPercentEscapes("a%20%"_ns, nullptr)), "a%20%");
}

TEST(PercentEscapes, AnAbsentTextStaysAbsent) {
  EXPECT_EQ(stringByReplacingPercentEscapes(nullptr, ""_ns), nullptr);
  EXPECT_EQ(stringByAddingPercentEscapes(nullptr, nullptr, nullptr), nullptr);
  EXPECT_EQ(stringByAddingPercentEncoding(nullptr, ""), nullptr);
}

TEST(PercentEscapes, TheseCharactersNeedNoEscape) {
  const std::string plain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.!~*'()$&+,/:;=?@";
  EXPECT_EQ(text(stringByAddingPercentEscapes(string(plain), nullptr, nullptr)), plain);
  for (int c = 0; c < 128; ++c) {
    const std::string one(1, static_cast<char>(c));
    char escape[4];
    std::snprintf(escape, sizeof escape, "%%%02X", c);
    const bool isPlain = c != 0 && plain.find(one) != std::string::npos;
    EXPECT_EQ(text(stringByAddingPercentEscapes(string(one), nullptr, nullptr)),
              isPlain ? one : escape);
  }
}

TEST(PercentEscapes, OtherTextIsEscapedAsUTF8InUpperCase) {
  EXPECT_EQ(text(stringByAddingPercentEscapes("é日😀"_ns, nullptr, nullptr)),
            "%C3%A9%E6%97%A5%F0%9F%98%80");
  EXPECT_EQ(text(stringByAddingPercentEscapes("a\u0301 b"_ns, ""_ns, ""_ns)), "a%CC%81%20b");
}

TEST(PercentEscapes, CharactersMayBeLeftOrEscapedOnRequest) {
  EXPECT_EQ(text(stringByAddingPercentEscapes("a#b[%é😀]é"_ns, "#é%"_ns, nullptr)),
            "a#b%5B%é%F0%9F%98%80%5Dé");
  EXPECT_EQ(text(stringByAddingPercentEscapes("a=b&c/é"_ns, nullptr, "&=é"_ns)),
            "a%3Db%26c/%C3%A9");
  EXPECT_EQ(text(stringByAddingPercentEscapes("=#"_ns, "=#"_ns, "=#"_ns)), "%3D#")
      << "each list is about its own kind";
}

TEST(PercentEscapes, ALoneSurrogateHasNoEscape) {
  auto lone = NSString::stringWithUTF16(std::u16string{u'a', 0xD83D});
  EXPECT_EQ(stringByAddingPercentEscapes(lone, nullptr, nullptr), nullptr);
  EXPECT_EQ(stringByAddingPercentEscapes(lone, lone, nullptr), nullptr);
  EXPECT_EQ(stringByAddingPercentEncoding(lone, "a"), nullptr);
  EXPECT_TRUE(isEqual(stringByReplacingPercentEscapes(lone, ""_ns), lone)) << "but may stand by";
}

TEST(PercentEscapes, ASetOfItsOwnSaysWhatIsPlain) {
  EXPECT_EQ(text(stringByAddingPercentEncoding("ab%é"_ns, "a")), "a%62%25%C3%A9");
  EXPECT_EQ(text(stringByAddingPercentEncoding(string(kURLQueryAllowedCharacters),
                                               kURLQueryAllowedCharacters)),
            kURLQueryAllowedCharacters);
}

TEST(PercentEscapes, WhatWasEscapedComesBack) {
  std::string all;
  for (int c = 0; c < 128; ++c) all += static_cast<char>(c);
  for (const std::string& sample : {all, "é日😀%"s, ""s})
    EXPECT_EQ(text(stringByReplacingPercentEscapes(
                  stringByAddingPercentEscapes(string(sample), nullptr, nullptr), ""_ns)),
              sample);
}

}  // namespace
}  // namespace kbx
