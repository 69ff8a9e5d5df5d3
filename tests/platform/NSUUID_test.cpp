#include "platform/plugins/NSUUID.h"

#include <gtest/gtest.h>

using namespace kbx;

namespace {

constexpr NSUUID::Bytes kBytes{0x8B, 0x08, 0xC4, 0xBF, 0x41, 0x5B, 0x11, 0xD8,
                               0xB3, 0xF9, 0x00, 0x03, 0x93, 0x67, 0x26, 0xFC};

}  // namespace

TEST(NSUUID, TheTextIsUpperCaseWithHyphens) {
  EXPECT_EQ(NSUUID::UUIDWithBytes(kBytes)->UUIDString()->lossyUTF8(),
            "8B08C4BF-415B-11D8-B3F9-0003936726FC");
}

TEST(NSUUID, EqualOnesAreTheSameObject) {
  auto first = NSUUID::UUIDWithBytes(kBytes), second = NSUUID::UUIDWithBytes(kBytes);
  EXPECT_TRUE(isSame(first, second));
  EXPECT_TRUE(isSame(first, NSUUID::UUIDWithString("8B08C4BF-415B-11D8-B3F9-0003936726FC"_ns)));
  EXPECT_TRUE(isSame(first, NSUUID::constant(kBytes)));
  EXPECT_FALSE(isEqual(first, NSUUID::UUIDWithBytes({})));
}

TEST(NSUUID, TextIsReadLeniently) {
  struct Case {
    const char *rule, *text;
  };
  for (auto [rule, text] :
       {Case{"lower case", "8b08c4bf-415b-11d8-b3f9-0003936726fc"},
        Case{"mixed case", "8B08c4bF-415b-11D8-b3F9-0003936726Fc"},
        Case{"in braces", "{8B08C4BF-415B-11D8-B3F9-0003936726FC}"},
        Case{"blanks inside braces", "{ 8B08C4BF-415B-11D8-B3F9-0003936726FC }"},
        Case{"blanks around", " \t8B08C4BF-415B-11D8-B3F9-0003936726FC\n"},
        Case{"one word", "8B08C4BF415B11D8B3F90003936726FC"}}) {
    SCOPED_TRACE(rule);
    auto uuid = NSUUID::UUIDWithString(NSString::stringWithUTF8(text));
    ASSERT_TRUE(uuid);
    EXPECT_EQ(uuid->bytes(), kBytes);
  }
}

TEST(NSUUID, OtherTextIsNone) {
  for (const char* text :
       {"", "{}", "{", "8B08C4BF-415B-11D8-B3F9-0003936726F",
        "8B08C4BF-415B-11D8-B3F9-0003936726FCA", "8B08C4BF-415B-11D8-B3F9-0003936726FG",
        "8B08C4BF-415B-11D8-B3F90-003936726FC", "{8B08C4BF-415B-11D8-B3F9-0003936726FC",
        "8B08C4BF-415B-11D8-B3F9-0003936726FC}", "{{8B08C4BF-415B-11D8-B3F9-0003936726FC}}",
        "------------------------------------", "8B08C4BF-415B-11D8-B3F9-0003936726F\xC3\x89"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(NSUUID::UUIDWithString(NSString::stringWithUTF8(text)));
  }
  EXPECT_FALSE(NSUUID::UUIDWithString(nullptr));
}

TEST(NSUUID, RandomOnesDifferAndSayThatTheyAreRandom) {
  auto first = NSUUID::UUID(), second = NSUUID::UUID();
  EXPECT_FALSE(isSame(first, second));
  EXPECT_EQ(first->bytes()[6] >> 4, 4);
  EXPECT_EQ(first->bytes()[8] >> 6, 2);
}

TEST(NSUUID, OneThatHasDiedComesBackAsAnother) {
  for (int i = 0; i < 3; ++i) {
    auto uuid = NSUUID::UUIDWithBytes({1, 2, 3});
    EXPECT_EQ(uuid->bytes()[2], 3);
  }
}
