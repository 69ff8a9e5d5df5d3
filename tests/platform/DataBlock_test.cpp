#include "platform/objects/DataBlock.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <new>

#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(DataBlock, GivesAwayItsBytesWithoutACopy) {
  DataBlock block(8);
  std::memcpy(block.bytes(), "abcdefgh", 8);
  const std::uint8_t* bytes = block.bytes();
  auto data = block.take(8);
  EXPECT_EQ(text(data), "abcdefgh");
  EXPECT_EQ(data->bytes(), bytes);
}

TEST(DataBlock, GivesAwayAPartOfItsBytes) {
  for (std::size_t length : {0u, 1u, 500u, 999u, 1000u}) {
    DataBlock block(1000);
    std::memset(block.bytes(), 'a', 1000);
    EXPECT_EQ(text(block.take(length)), std::string(length, 'a'));
  }
}

TEST(DataBlock, MoreThanThereIsThrows) {
  EXPECT_THROW(DataBlock(SIZE_MAX), std::bad_alloc);
  EXPECT_THROW(DataBlock(PTRDIFF_MAX), std::bad_alloc);
}

TEST(DataBlock, MayBeEmpty) { EXPECT_EQ(DataBlock(0).take(0)->length(), 0u); }

TEST(DataBlock, NeedsNotBeGivenAway) { EXPECT_NE(DataBlock(5).bytes(), nullptr); }

}  // namespace
}  // namespace kbx
