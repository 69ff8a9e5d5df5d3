#include "platform/system/UUID.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/FakeRandomSource.h"

namespace kbx {
namespace {

TEST(UUID, TheStandardFormIsUpperCaseInFiveGroups) {
  const UUIDBytes bytes{0x8B, 0x08, 0xC4, 0xBF, 0x41, 0x5B, 0x11, 0xD8,
                        0xB3, 0xF9, 0x00, 0x03, 0x93, 0x67, 0x26, 0xFC};
  EXPECT_EQ(uuidString(bytes), "8B08C4BF-415B-11D8-B3F9-0003936726FC");
}

TEST(UUID, ARandomOneSaysThatItIsRandom) {
  for (int i = 0; i < 100; ++i) {
    const UUIDBytes bytes = randomUUID();
    EXPECT_EQ(bytes[6] >> 4, 4);
    EXPECT_EQ(bytes[8] >> 6, 2);
  }
}

TEST(UUID, TwoRandomOnesDiffer) { EXPECT_NE(randomUUID(), randomUUID()); }

TEST(UUID, RandomBytesFillASpanOfAnyLength) {
  EXPECT_TRUE(fillWithRandomBytes({}));
  std::vector<std::uint8_t> bytes(5000);
  ASSERT_TRUE(fillWithRandomBytes(bytes));
  EXPECT_NE(bytes, std::vector<std::uint8_t>(5000));
}

TEST(UUID, WithoutRandomBytesItIsZero) {
  FakeRandomSource source;
  ScopedService<RandomSource> installed(source);
  EXPECT_EQ(randomUUID(), UUIDBytes{});
}

TEST(UUID, TheVersionAndTheVariantAreSetOverTheRandomBits) {
  FakeRandomSource source;
  source.hasBytes = true;
  ScopedService<RandomSource> installed(source);
  EXPECT_EQ(uuidString(randomUUID()), "FFFFFFFF-FFFF-4FFF-BFFF-FFFFFFFFFFFF");
}

}  // namespace
}  // namespace kbx
