#include "platform/text/TextDetection.h"

#include <gtest/gtest.h>

#include "platform/objects/NSData.h"
#include "platform/objects/NSError.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace std::string_literals;

Ref<NSString> detect(std::string_view bytes, NSStringEncoding* encoding = nullptr) {
  return stringByDetectingEncoding(data(bytes), encoding);
}

TEST(TextDetection, AByteOrderMarkDecidesAndIsNotText) {
  struct Case {
    std::string bytes;
    NSStringEncoding encoding;
    const char* text;
  };
  for (const auto& [bytes, encoding, expected] :
       {Case{"\xEF\xBB\xBFé", NSUTF8StringEncoding, "é"},
        {"\xFF\xFE\xE9\0a\0"s, NSUTF16LittleEndianStringEncoding, "éa"},
        {"\xFE\xFF\0\xE9\0a"s, NSUTF16BigEndianStringEncoding, "éa"},
        {"\xFF\xFE\0\0a\0\0\0"s, NSUTF32LittleEndianStringEncoding, "a"},
        {"\0\0\xFE\xFF\0\0\0a"s, NSUTF32BigEndianStringEncoding, "a"}}) {
    SCOPED_TRACE(expected);
    NSStringEncoding used{};
    EXPECT_EQ(text(detect(bytes, &used)), expected);
    EXPECT_EQ(used, encoding);
  }
}

TEST(TextDetection, AMarkAloneIsEmptyText) {
  EXPECT_EQ(text(detect("\xEF\xBB\xBF")), "");
  EXPECT_EQ(text(detect("\xFF\xFE")), "");
}

TEST(TextDetection, ValidUTF8IsUTF8) {
  for (const auto* bytes : {"", "plain", "Grüße 日本 😀", "line\r\nline\r\n"}) {
    NSStringEncoding used{};
    EXPECT_EQ(text(detect(bytes, &used)), bytes);
    EXPECT_EQ(used, NSUTF8StringEncoding);
  }
}

TEST(TextDetection, ANULIsText) { EXPECT_EQ(detect("a\0b"s)->length(), 3u); }

TEST(TextDetection, OtherTextIsWhatItsBytesLookLike) {
  struct Case {
    const char *rule, *bytes, *text;
  };
  for (auto [rule, bytes, expected] :
       {Case{"Russian in windows-1251",
             "\xCF\xF0\xE8\xE2\xE5\xF2, \xEA\xE0\xEA \xE4\xE5\xEB\xE0? \xDF \xEF\xE8\xF8\xF3 "
             "\xEF\xE8\xF1\xFC\xEC\xEE \xE4\xEB\xFF \xF2\xE5\xE1\xFF.",
             "Привет, как дела? Я пишу письмо для тебя."},
        {"Japanese in Shift_JIS",
         "\x82\xB1\x82\xF1\x82\xC9\x82\xBF\x82\xCD\x81\x41\x93\xFA\x96\x7B\x8C\xEA\x82\xC5\x82"
         "\xB7\x81\x42",
         "こんにちは、日本語です。"}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(text(detect(bytes)), expected);
  }
}

TEST(TextDetection, LongASCIIBeforeTheFirstForeignByteDoesNotHideIt) {
  const std::string ascii(3 << 20, 'x');
  const std::string russian =
      "\xCF\xF0\xE8\xE2\xE5\xF2, \xEA\xE0\xEA \xE4\xE5\xEB\xE0? \xDF \xEF\xE8\xF8\xF3 "
      "\xEF\xE8\xF1\xFC\xEC\xEE \xE4\xEB\xFF \xF2\xE5\xE1\xFF.";
  EXPECT_EQ(text(detect(ascii + "\n" + russian)->substringFromIndex(ascii.size() + 1)),
            "Привет, как дела? Я пишу письмо для тебя.");
}

TEST(TextDetection, BytesThatNobodyCanTellHaveNoText) {
  EXPECT_EQ(detect("\x80\x81\xFF\xFE\x00\x9D\x8F"s), nullptr);
}

TEST(TextDetection, AFileThatCannotBeReadFailsAsReadingDoes) {
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_EQ(stringWithContentsOfURL(folder.url("none"), nullptr, &error), nullptr);
  EXPECT_EQ(error->code(), 260);
}

TEST(TextDetection, AFileThatNobodyCanTellFailsWithAnErrorOfItsOwn) {
  TemporaryFolder folder;
  auto url = folder.write("odd", "\x80\x81\xFF\xFE\x00\x9D\x8F"s);
  Ref<NSError> error;
  EXPECT_EQ(stringWithContentsOfURL(url, nullptr, &error), nullptr);
  EXPECT_EQ(error->code(), 264);
  EXPECT_EQ(stringWithContentsOfURL(url, nullptr, nullptr), nullptr);
}

TEST(TextDetection, ASCIITextAndLongUTF8ShareTheBuffer) {
  std::string utf8 = "Grüße 日本 😀";
  while (utf8.size() < 5000) utf8 += utf8;
  for (const std::string& one : {"only bytes"s, utf8}) {
    auto bytes = data(one);
    EXPECT_TRUE(isSame(stringByDetectingEncoding(bytes, nullptr)->UTF8Data(), bytes));
    EXPECT_EQ(text(detect("\xEF\xBB\xBF" + one)), one);
  }
}

}  // namespace
}  // namespace kbx
