#include "platform/text/Base64.h"

#include <gtest/gtest.h>

namespace kbx {
namespace {

TEST(Base64, EveryLengthOfTheLastGroupIsPadded) {
  struct Case {
    std::string_view bytes, text;
  };
  for (auto [bytes, text] : {Case{"", ""},
                             {"f", "Zg=="},
                             {"fo", "Zm8="},
                             {"foo", "Zm9v"},
                             {"foob", "Zm9vYg=="},
                             {"fooba", "Zm9vYmE="},
                             {"foobar", "Zm9vYmFy"},
                             {"\xFB\xFF\xBF", "+/+/"}}) {
    EXPECT_EQ(base64FromBytes(bytes), text);
    EXPECT_EQ(bytesFromBase64(text), bytes);
  }
}

TEST(Base64, AllBytesComeBack) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  EXPECT_EQ(bytesFromBase64(base64FromBytes(bytes)), bytes);
}

TEST(Base64, BlanksBetweenTheLettersAreSkipped) {
  EXPECT_EQ(bytesFromBase64(" Zm\n\t9v\r\nYg = = "), "foob");
}

TEST(Base64, EveryLengthComesBackWhereverALineEnds) {
  std::string bytes;
  for (int length = 0; length < 40; ++length, bytes += static_cast<char>(200 + 7 * length)) {
    const std::string text = base64FromBytes(bytes);
    EXPECT_EQ(text.size(), base64Length(bytes.size()));
    for (std::size_t at = 0; at <= text.size(); ++at) {
      std::string broken = text;
      EXPECT_EQ(bytesFromBase64(broken.insert(at, "\n\t")), bytes);
      EXPECT_EQ(bytesFromBase64(broken.insert(at, "*")), std::nullopt);
    }
  }
}

TEST(Base64, WhatIsNoBase64IsRefused) {
  for (auto text : {"Z", "Zg", "Zg=", "Zm8", "Zg===", "=",
                    "====", "Z===", "Zm9v=", "Zg==Zg==", "Zm9*", "Zm9v-", "Zm8=Z", "Zm\xC3\xA9v"})
    EXPECT_EQ(bytesFromBase64(text), std::nullopt) << text;
}

}  // namespace
}  // namespace kbx
