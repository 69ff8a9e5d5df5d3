#include "NSString+KBXPercentEscapes.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr const char* kAbsent = "(null)";

TEST(NSStringKBXPercentEscapes, EveryEscapeIsDecoded) {
  struct Case {
    const char *text, *decoded;
  };
  for (auto [sample, decoded] : {Case{"a%20b%2F%c3%A9", "a b/é"},
                                 {"plain+é", "plain+é"},
                                 {"", ""},
                                 {"%", kAbsent},
                                 {"%4", kAbsent},
                                 {"%G1", kAbsent},
                                 {"%FF", kAbsent}})
    EXPECT_EQ(text(kbxDecodePercentEscapes(string(sample))), decoded);
  EXPECT_EQ(kbxDecodePercentEscapes(nullptr), nullptr);
}

TEST(NSStringKBXPercentEscapes, SomeEscapesAreKept) {
  EXPECT_EQ(text(kbxDecodePercentEscapesKeepingEscaped("%2f%20%C3%a9"_ns, "/é"_ns)), "%2f %C3%a9");
  EXPECT_EQ(text(kbxDecodePercentEscapesKeepingEscaped("%2f%4"_ns, "/"_ns)), kAbsent);
  auto all = string("%2f%4");
  auto kept = kbxDecodePercentEscapesKeepingEscaped(all, nullptr);
  EXPECT_TRUE(isEqual(kept, all));
  EXPECT_FALSE(isSame(kept.get(), all.get()));
  EXPECT_EQ(kbxDecodePercentEscapesKeepingEscaped(nullptr, nullptr), nullptr);
}

TEST(NSStringKBXPercentEscapes, AQuerysPartsHaveNoSeparators) {
  EXPECT_EQ(text(kbxEncodeForQueryString("a=b&c d+é%"_ns)), "a%3Db%26c%20d+%C3%A9%25");
  EXPECT_EQ(text(kbxEncodeForQueryString("-_.!~*'()$&+,/:;=?@#[]"_ns)),
            "-_.!~*'()$%26+,/:;%3D?@%23%5B%5D");
  EXPECT_EQ(kbxEncodeForQueryString(nullptr), nullptr);
}

TEST(NSStringKBXPercentEscapes, AURLKeepsWhatIsAskedFor) {
  EXPECT_EQ(text(kbxEncodeURLKeepingUnescaped("http://é/a b?c=d&e#f%"_ns, "#"_ns)),
            "http://%C3%A9/a%20b?c=d&e#f%25");
  EXPECT_EQ(text(kbxEncodeURLKeepingUnescaped("a#b%20"_ns, "#%"_ns)), "a#b%20");
  EXPECT_EQ(text(kbxEncodeURLKeepingUnescaped("a#b"_ns, nullptr)), "a%23b");
  EXPECT_EQ(text(kbxEncodeURLKeepingUnescaped("a#b"_ns, ""_ns)), "a%23b");
  EXPECT_EQ(kbxEncodeURLKeepingUnescaped(nullptr, ""_ns), nullptr);
}

TEST(NSStringKBXPercentEscapes, ALoneSurrogateCannotBeEncoded) {
  auto lone = NSString::stringWithUTF16(std::u16string{u'a', 0xD83D, u'b'});
  EXPECT_EQ(kbxEncodeForQueryString(lone), nullptr);
  EXPECT_EQ(kbxEncodeURLKeepingUnescaped(lone, ""_ns), nullptr);
}

}  // namespace
}  // namespace kbx
