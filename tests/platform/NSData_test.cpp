#include "platform/objects/NSData.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "platform/objects/NSException.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSData> buffer(std::string_view bytes) { return NSData::dataWithBytes(bytes); }

TEST(NSData, BytesAreCopied) {
  std::string bytes("abc");
  auto made = buffer(bytes);
  bytes[0] = 'x';
  EXPECT_EQ(made->length(), 3U);
  EXPECT_EQ(made->view(), "abc");
  EXPECT_EQ(made->bytes()[2], 'c');
}

TEST(NSData, NothingIsABufferToo) {
  for (const auto& empty : {NSData::data(), NSData::dataWithBytes(nullptr, 0), buffer(""),
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

TEST(NSData, AnotherOfAnImmutableBufferSharesItsBytes) {
  auto bytes = buffer("shared by three");
  auto second = NSData::dataWithData(bytes);
  auto third = NSData::dataWithData(second);
  EXPECT_FALSE(isSame(second, bytes));
  EXPECT_EQ(second->bytes(), bytes->bytes());
  EXPECT_EQ(third->bytes(), bytes->bytes());
  bytes = nullptr;
  second = nullptr;
  EXPECT_EQ(third->view(), "shared by three");  // the bytes live as long as anyone who shares them
}

TEST(NSData, AnotherOfAMutableBufferIsACopy) {
  auto bytes = NSMutableData::data();
  bytes->appendBytes("before");
  auto second = NSData::dataWithData(bytes);
  bytes->mutableBytes()[0] = 'B';
  EXPECT_EQ(second->view(), "before");
}

TEST(NSData, AnotherOfNoneIsNone) {
  EXPECT_EQ(NSData::dataWithData(nullptr), nullptr);
  EXPECT_EQ(NSData::dataWithData(NSData::data())->length(), 0U);
}

TEST(NSData, PartsAreCopies) {
  auto whole = buffer("abcdef");
  EXPECT_EQ(whole->subdataWithRange({2, 3})->view(), "cde");
  EXPECT_EQ(whole->subdataWithRange({6, 0})->view(), "");
  EXPECT_TRUE(isEqual(whole->subdataWithRange({0, 6}), whole));
}

TEST(NSData, ARangePastTheEndRaises) {
  auto whole = buffer("abc");
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
  EXPECT_TRUE(isEqual(buffer("abc"), buffer("abc")));
  EXPECT_TRUE(isEqual(buffer("abc"), buffer("abc")->mutableCopy()));
  EXPECT_EQ(buffer("abc")->hash(), buffer("abc")->mutableCopy()->hash());
  EXPECT_FALSE(isEqual(buffer("abc"), buffer("abd")));
  EXPECT_FALSE(isEqual(buffer("abc"), buffer("ab")));
  EXPECT_FALSE(isEqual(buffer("abc"), "abc"_ns));
  EXPECT_FALSE(buffer("abc")->isEqual(nullptr));
  const std::string longText(200, 'x');
  EXPECT_NE(buffer(longText)->hash(), buffer(longText + "x")->hash());
}

TEST(NSData, LongBuffersShowTheirEnds) {
  struct Case {
    const char *bytes, *printed;
  };
  for (auto [bytes, printed] :
       {Case{"abc", "{length = 3, bytes = 0x616263}"},
        {"\xFF\x01", "{length = 2, bytes = 0xff01}"},
        {"aaaaaaaaaaaaaaaaaaaaaaab",
         "{length = 24, bytes = 0x616161616161616161616161616161616161616161616162}"},
        {"aaaaaaaaaaaaaaaaaaaaaaaab",
         "{length = 25, bytes = 0x61616161616161616161616161616161 ... 6161616161616162}"}})
    EXPECT_EQ(text(buffer(bytes)->description()), printed);
}

TEST(NSData, AnImmutableBufferIsItsOwnCopy) {
  auto made = buffer("abc");
  EXPECT_TRUE(isSame(made->copy(), made));
  EXPECT_FALSE(isSame(made->mutableCopy(), made));
}

TEST(NSMutableData, ACopyDoesNotChangeAnyMore) {
  auto made = buffer("abc")->mutableCopy();
  auto copy = made->copy();
  made->mutableBytes()[0] = 'x';
  made->appendBytes("def");
  EXPECT_EQ(copy->view(), "abc");
  EXPECT_EQ(made->view(), "xbcdef");
  EXPECT_EQ(cast<NSMutableData>(copy), nullptr);
  EXPECT_TRUE(isSame(copy->copy(), copy));
}

TEST(NSMutableData, NewBytesAreZero) {
  auto made = NSMutableData::dataWithLength(3);
  EXPECT_EQ(made->view(), std::string(3, '\0'));
  made->mutableBytes()[2] = 'c';
  made->setLength(2);
  made->setLength(4);
  EXPECT_EQ(made->view(), std::string(4, '\0')) << "bytes cut off do not come back";
  EXPECT_EQ(NSMutableData::dataWithCapacity(100)->length(), 0U);
}

TEST(NSMutableData, ABufferMayBeAppendedToItself) {
  auto made = buffer("ab")->mutableCopy();
  for (int i = 0; i < 12; ++i) made->appendData(made);
  EXPECT_EQ(made->length(), std::size_t{2} << 12);
  EXPECT_EQ(made->view().substr(8190), "ab");
  made->setLength(2);
  made->appendBytes(made->view().substr(1));
  EXPECT_EQ(made->view(), "abb");
}

TEST(NSMutableData, NothingAddsNothing) {
  auto made = NSMutableData::data();
  made->appendData(nullptr);
  made->appendData(NSData::data());
  made->appendBytes(nullptr, 0);
  made->appendBytes({});
  EXPECT_EQ(made->length(), 0U);
}

TEST(NSMutableData, GrowthByBytesKeepsThem) {
  auto made = NSMutableData::data();
  std::string expected;
  for (int i = 0; i < 5000; ++i) {
    const char byte = static_cast<char>(i * 7);
    made->appendBytes(&byte, 1);
    expected += byte;
  }
  EXPECT_EQ(made->view(), expected);
}

TEST(NSMutableData, AnAbsurdLengthIsRefusedAndChangesNothing) {
  auto made = buffer("abc")->mutableCopy();
  EXPECT_THROW(made->setLength(SIZE_MAX), std::bad_alloc);
  EXPECT_THROW(made->appendBytes("x", SIZE_MAX), std::bad_alloc);
  EXPECT_THROW(made->appendBytes("x", SIZE_MAX / 2), std::bad_alloc);
  EXPECT_THROW(NSMutableData::dataWithCapacity(SIZE_MAX), std::bad_alloc);
  EXPECT_THROW(NSData::dataWithBytes("x", SIZE_MAX), std::bad_alloc);
  EXPECT_EQ(made->view(), "abc");
}

}  // namespace
}  // namespace kbx
