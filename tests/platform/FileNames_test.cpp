#include "platform/files/FileNames.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(FileNames, EveryNameFindsItsWayBack) {
  using namespace std::string_literals;
  for (const auto& name : {""s, "a.eml"s, "日本語😀"s, "caf\xE9"s, "\xFF\xFE"s, "a\xC3"s,
                           "\xED\xB2\x80"s, "\xF0\x9F\x98"s, "é\xE9é"s, "\xC0\x80"s}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(fileSystemRepresentation(stringWithFileSystemRepresentation(name)), name);
  }
}

TEST(FileNames, RandomBytesFindTheirWayBack) {
  std::mt19937 random(7);
  for (int round = 0; round < 20000; ++round) {
    std::string name(random() % 8, '\0');
    for (char& byte : name) byte = static_cast<char>(random() % 255 + 1);
    ASSERT_EQ(fileSystemRepresentation(stringWithFileSystemRepresentation(name)), name);
  }
}

TEST(FileNames, AForeignByteIsALoneSurrogate) {
  auto name = stringWithFileSystemRepresentation("a\xE9");
  ASSERT_EQ(name->length(), 2u);
  EXPECT_EQ(name->characterAtIndex(1), 0xDCE9);
}

TEST(FileNames, SomeTextsAreTheNameOfNoFile) {
  EXPECT_FALSE(fileSystemRepresentation(nullptr));
  EXPECT_FALSE(fileSystemRepresentation(NSString::stringWithUTF8({"a\0b", 3})));
  EXPECT_FALSE(fileSystemRepresentation(NSString::stringWithUTF16(u"a\xD800")));
  EXPECT_FALSE(fileSystemRepresentation(NSString::stringWithUTF16(u"a\xDC7F")));
}

}  // namespace
}  // namespace kbx
