#include "ByteBlock.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(ByteBlock, GivesAwayItsBytesWithoutACopy) {
  ByteBlock block(8);
  std::memcpy(block.bytes(), "abcdefgh", 8);
  const std::uint8_t* bytes = block.bytes();
  auto data = block.take(8);
  EXPECT_EQ(text(data), "abcdefgh");
  EXPECT_EQ(data->bytes(), bytes);
}

TEST(ByteBlock, GivesAwayAPartOfItsBytes) {
  for (std::size_t length : {0u, 1u, 500u, 999u, 1000u}) {
    ByteBlock block(1000);
    std::memset(block.bytes(), 'a', 1000);
    EXPECT_EQ(text(block.take(length)), std::string(length, 'a'));
  }
}

TEST(ByteBlock, MayBeEmpty) { EXPECT_EQ(ByteBlock(0).take(0)->length(), 0u); }

TEST(ByteBlock, NeedsNotBeGivenAway) { EXPECT_NE(ByteBlock(5).bytes(), nullptr); }

}  // namespace
}  // namespace kbx
