#include "NSString+KBXFourCharCodes.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSStringKBXFourCharCodes, ACodeIsFourCharactersOfMacOSRoman) {
  EXPECT_EQ(text(kbxStringWithFourCharCode(0x54455854)), "TEXT");
  EXPECT_EQ(text(kbxStringWithFourCharCode(0x8EDBF020)), "é€\uF8FF ");
  EXPECT_EQ(kbxStringWithFourCharCode(1)->length(), 4u) << "leading zero bytes are characters";
}

TEST(NSStringKBXFourCharCodes, ATextGivesItsCodeBack) {
  EXPECT_EQ(kbxFourCharCodeValue("TEXT"_ns), 0x54455854u);
  std::mt19937 random(1);
  for (int round = 0; round < 1000; ++round) {
    const auto code = static_cast<OSType>(random() | 1);
    EXPECT_EQ(kbxFourCharCodeValue(kbxStringWithFourCharCode(code)), code);
  }
}

TEST(NSStringKBXFourCharCodes, ATextThatMacOSRomanLacksHasNoCode) {
  EXPECT_EQ(kbxFourCharCodeValue("Жabc"_ns), 0u);
  EXPECT_EQ(kbxFourCharCodeValue("ab😀"_ns), 0u);
}

TEST(NSStringKBXFourCharCodes, AnotherLengthThanFourIsAProgrammingError) {
  for (NSString* string : {""_ns, "abc"_ns, "abcde"_ns, "😀ab😀"_ns}) {
    RecordingLog log;
    auto exception = raisedBy([&] { kbxFourCharCodeValue(string); });
    ASSERT_NE(exception, nullptr);
    EXPECT_EQ(text(exception->name()), "KBXAssertionFailedException");
    EXPECT_EQ(text(exception->reason()),
              "Precondition Failed: [self length] == 4 at NSString+KBXBasics:608 "
              "-kbxFourCharCodeValue");
    EXPECT_EQ(log.lines(),
              (std::vector<std::string>{"NSString+KBXBasics:608 -kbxFourCharCodeValue: Assertion "
                                        "Failed: Precondition Failed: [self length] == 4"}));
  }
}

TEST(NSStringKBXFourCharCodes, AnAbsentTextHasNoCode) {
  EXPECT_EQ(kbxFourCharCodeValue(nullptr), 0u);
}

TEST(NSStringKBXFourCharCodes, TheUnknownCodeIsLikeNoOther) {
  EXPECT_TRUE(isEqual(kbxStringWithFourCharCode(0), kbxUnknownCode()));
  EXPECT_TRUE(isEqual(kbxUnknownCode(), ""_ns));
  EXPECT_TRUE(kbxIsUnknownCode(kbxUnknownCode()));
  EXPECT_TRUE(kbxIsUnknownCode(kbxStringWithFourCharCode(0)));
  for (OSType code : {1u, 0x20202020u, 0x3F3F3F3Fu, 0xFFFFFFFFu})
    EXPECT_FALSE(kbxIsUnknownCode(kbxStringWithFourCharCode(code)));
  EXPECT_FALSE(kbxIsUnknownCode(nullptr));
}

}  // namespace
}  // namespace kbx
