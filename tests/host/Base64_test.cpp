#include "host/Base64.h"

#include <gtest/gtest.h>

namespace kbx {
namespace {

std::string base64(std::string_view bytes) {
  StringOutput output;
  writeBase64(output, bytes);
  return output.text();
}

TEST(Base64, TheLastGroupIsPadded) {
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
                             {{"\0\xFF\xFE", 3}, "AP/+"},
                             {{"\xFB\xEF\xBE", 3}, "++++"}})
    EXPECT_EQ(base64(bytes), text);
}

}  // namespace
}  // namespace kbx
