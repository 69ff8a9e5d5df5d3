#include "platform/objects/NSData.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "platform/objects/NSException.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSData, BytesAreCopied) {
  std::string bytes("abc");
  auto made = data(bytes);
  bytes[0] = 'x';
  EXPECT_EQ(made->length(), 3U);
  EXPECT_EQ(made->view(), "abc");
  EXPECT_EQ(made->bytes()[2], 'c');
}

TEST(NSData, NothingIsABufferToo) {
  for (const auto& empty : {NSData::data(), NSData::dataWithBytes(nullptr, 0), data(""),
                            NSData::dataWithBytesNoCopy(nullptr, 0)}) {
    EXPECT_EQ(empty->length(), 0U);
    EXPECT_EQ(empty->view(), "");
    EXPECT_TRUE(isEqual(empty, NSData::data()));
    EXPECT_EQ(empty->hash(), NSData::data()->hash());
    EXPECT_EQ(text(empty->description()), "{length = 0, bytes = 0x}");
  }
}

TEST(NSData, ABlockIsTakenOver) {
  auto* block = static_cast<char*>(std::malloc(4));
  block[0] = 'a', block[1] = 'b';
  auto made = NSData::dataWithBytesNoCopy(block, 2);
  EXPECT_EQ(static_cast<const void*>(made->bytes()), block);
  EXPECT_EQ(made->view(), "ab");
}

TEST(NSData, PartsAreCopies) {
  auto whole = data("abcdef");
  EXPECT_EQ(whole->subdataWithRange({2, 3})->view(), "cde");
  EXPECT_EQ(whole->subdataWithRange({6, 0})->view(), "");
  EXPECT_TRUE(isEqual(whole->subdataWithRange({0, 6}), whole));
}

TEST(NSData, ARangePastTheEndRaises) {
  auto whole = data("abc");
  for (NSRange range : {NSRange{4, 0},
                        {3, 1},
                        {0, 4},
                        {1, UINT64_MAX},
                        {UINT64_MAX, 1},
                        {UINT64_MAX, UINT64_MAX},
                        kRangeNotFound}) {
    try {
      whole->subdataWithRange(range);
      ADD_FAILURE() << text(NSStringFromRange(range));
    } catch (const Raised& raised) {
      EXPECT_EQ(text(raised.exception()->name()), "NSRangeException");
    }
  }
}

TEST(NSData, BuffersAreEqualWhenTheirBytesAre) {
  EXPECT_TRUE(isEqual(data("abc"), data("abc")));
  EXPECT_TRUE(isEqual(data("abc"), data("abc")->mutableCopy()));
  EXPECT_EQ(data("abc")->hash(), data("abc")->mutableCopy()->hash());
  EXPECT_FALSE(isEqual(data("abc"), data("abd")));
  EXPECT_FALSE(isEqual(data("abc"), data("ab")));
  EXPECT_FALSE(isEqual(data("abc"), "abc"_ns));
  EXPECT_FALSE(data("abc")->isEqual(nullptr));
  const std::string longText(200, 'x');
  EXPECT_NE(data(longText)->hash(), data(longText + "x")->hash());
}

TEST(NSData, LongBuffersShowTheirEnds) {
  struct Case {
    std::string bytes, printed;
  };
  const Case cases[] = {
      {"abc", "{length = 3, bytes = 0x616263}"},
      {std::string(24, '\xFF'), "{length = 24, bytes = 0x" + std::string(48, 'f') + "}"},
      {std::string(24, 'a') + "b",
       "{length = 25, bytes = 0x61616161616161616161616161616161 ... 6161616161616162}"}};
  for (const auto& [bytes, printed] : cases) EXPECT_EQ(text(data(bytes)->description()), printed);
}

TEST(NSData, AnImmutableBufferIsItsOwnCopy) {
  auto made = data("abc");
  EXPECT_TRUE(isSame(made->copy(), made));
  EXPECT_FALSE(isSame(made->mutableCopy(), made));
}

TEST(NSMutableData, ACopyDoesNotChangeAnyMore) {
  auto buffer = data("abc")->mutableCopy();
  auto copy = buffer->copy();
  buffer->mutableBytes()[0] = 'x';
  buffer->appendBytes("def");
  EXPECT_EQ(copy->view(), "abc");
  EXPECT_EQ(buffer->view(), "xbcdef");
  EXPECT_EQ(cast<NSMutableData>(copy), nullptr);
  EXPECT_TRUE(isSame(copy->copy(), copy));
}

TEST(NSMutableData, NewBytesAreZero) {
  auto buffer = NSMutableData::dataWithLength(3);
  EXPECT_EQ(buffer->view(), std::string(3, '\0'));
  buffer->mutableBytes()[2] = 'c';
  buffer->setLength(2);
  buffer->setLength(4);
  EXPECT_EQ(buffer->view(), std::string(4, '\0')) << "bytes cut off do not come back";
  EXPECT_EQ(NSMutableData::dataWithCapacity(100)->length(), 0U);
}

TEST(NSMutableData, ABufferMayBeAppendedToItself) {
  auto buffer = data("ab")->mutableCopy();
  for (int i = 0; i < 12; ++i) buffer->appendData(buffer);
  EXPECT_EQ(buffer->length(), std::size_t{2} << 12);
  EXPECT_EQ(buffer->view().substr(8190), "ab");
  buffer->setLength(2);
  buffer->appendBytes(buffer->view().substr(1));
  EXPECT_EQ(buffer->view(), "abb");
}

TEST(NSMutableData, NothingAddsNothing) {
  auto buffer = NSMutableData::data();
  buffer->appendData(nullptr);
  buffer->appendData(NSData::data());
  buffer->appendBytes(nullptr, 0);
  buffer->appendBytes({});
  EXPECT_EQ(buffer->length(), 0U);
}

TEST(NSMutableData, GrowthByBytesKeepsThem) {
  auto buffer = NSMutableData::data();
  std::string expected;
  for (int i = 0; i < 5000; ++i) {
    const char byte = static_cast<char>(i * 7);
    buffer->appendBytes(&byte, 1);
    expected += byte;
  }
  EXPECT_EQ(buffer->view(), expected);
}

TEST(NSMutableData, AnAbsurdLengthIsRefusedAndChangesNothing) {
  auto buffer = data("abc")->mutableCopy();
  EXPECT_THROW(buffer->setLength(SIZE_MAX), std::bad_alloc);
  EXPECT_THROW(buffer->appendBytes("x", SIZE_MAX), std::bad_alloc);
  EXPECT_THROW(buffer->appendBytes("x", SIZE_MAX / 2), std::bad_alloc);
  EXPECT_THROW(NSMutableData::dataWithCapacity(SIZE_MAX), std::bad_alloc);
  EXPECT_THROW(NSData::dataWithBytes("x", SIZE_MAX), std::bad_alloc);
  EXPECT_EQ(buffer->view(), "abc");
}

}  // namespace
}  // namespace kbx
