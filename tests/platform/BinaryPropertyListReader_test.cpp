#include "platform/propertylists/BinaryPropertyListReader.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/PropertyLists.h"

namespace kbx {
namespace {

using namespace test;
using namespace std::string_literals;

std::string word(std::uint64_t number, unsigned size = 8) {
  std::string bytes;
  for (unsigned i = size; i-- > 0;)
    bytes += i < 8 ? static_cast<char>(number >> (8 * i) & 0xFF) : '\0';
  return bytes;
}

/// A file put together by hand; what is left out fits the objects.
struct File {
  std::vector<std::string> objects;
  unsigned offsetSize = 2;
  unsigned referenceSize = 1;
  std::uint64_t top = 0;
  std::optional<std::uint64_t> count{};
  std::optional<std::uint64_t> table{};

  std::string bytes() const {
    std::string file = "bplist00", offsets;
    for (const auto& object : objects) {
      offsets += word(file.size(), offsetSize);
      file += object;
    }
    const std::uint64_t start = file.size();
    return file + offsets + std::string(6, '\0') + word(offsetSize, 1) + word(referenceSize, 1) +
           word(count.value_or(objects.size())) + word(top) + word(table.value_or(start));
  }
};

std::string faultOf(const File& file) { return fault(file.bytes()); }
Ref<NSObject> only(std::string object) { return read(File{{std::move(object)}}.bytes()); }

std::string sentence(const std::string& text) {
  return "The property list couldn’t be read: " + text + ".";
}

TEST(BinaryPropertyListReader, EverySizeOfNumberIsRead) {
  auto integer = [](std::int64_t value) { return NSNumber::numberWithInteger(value); };
  struct Case {
    std::string object;
    Ref<NSNumber> value;
  };
  for (const auto& [object, value] :
       {Case{"\x10\xFF", integer(255)},
        {"\x11\xFF\xFE", integer(0xFFFE)},
        {"\x12\xFF\xFF\xFF\xFE", integer(0xFFFFFFFE)},
        {"\x13" + word(UINT64_MAX), integer(-1)},
        {"\x14" + word(0) + word(5), integer(5)},
        {"\x14" + word(UINT64_MAX) + word(UINT64_MAX - 1), integer(-2)},
        {"\x14" + word(0) + word(UINT64_MAX), NSNumber::numberWithUnsignedInteger(UINT64_MAX)},
        {"\x22\x3F\xC0\0\0"s, NSNumber::numberWithDouble(1.5)},
        {"\x23\x3F\xF8\0\0\0\0\0\0"s, NSNumber::numberWithDouble(1.5)}}) {
    auto found = only(object);
    EXPECT_TRUE(isEqual(found, value)) << value->description()->lossyUTF8();
  }
}

TEST(BinaryPropertyListReader, ANumberIsTheSameInFrontOfOthersAndLast) {
  const std::string kinds = "\x10\x11\x12\x13\x22\x23\x33";
  for (const char kind : kinds)
    for (const std::uint64_t value :
         {std::uint64_t{0}, std::uint64_t{0x0123456789ABCDEF}, std::uint64_t{0xC0DEC0DEC0DEC0DE}}) {
      const auto number = kind + word(value, 1u << (kind & 0xF));
      auto list = read(File{
          {"\xA2\x01\x02", number,
           "\x5A"
           "0123456789"}}.bytes());
      ASSERT_TRUE(cast<NSArray>(list));
      EXPECT_EQ(written(cast<NSArray>(list)->objectAtIndex(0), kBinary),
                written(only(number), kBinary));
    }
}

TEST(BinaryPropertyListReader, EverySizeOfOffsetAndReferenceIsRead) {
  for (unsigned offset = 1; offset <= 8; ++offset)
    for (unsigned reference = 1; reference <= 8; ++reference) {
      File file{{"\xA2" + word(1, reference) + word(2, reference), "\x51"s + "a", "\x09"},
                offset,
                reference};
      auto list = NSArray::arrayWithObjects({"a"_ns, NSNumber::numberWithBool(true).get()});
      EXPECT_TRUE(isEqual(read(file.bytes()), list)) << faultOf(file);
    }
}

TEST(BinaryPropertyListReader, TheTopMayBeAnyObject) {
  EXPECT_TRUE(isEqual(read(File{{"\x08", "\x51z"}, 1, 1, 1}.bytes()), "z"_ns));
}

TEST(BinaryPropertyListReader, ALengthMayTakeEightBytes) {
  EXPECT_TRUE(isEqual(only("\x5F\x13" + word(1) + "q"), "q"_ns));
  EXPECT_TRUE(isEqual(only("\x4F\x10\x02zz"), NSData::dataWithBytes("zz")));
}

TEST(BinaryPropertyListReader, ASurrogateAloneStaysInItsText) {
  auto text = only("\x62\xD8\0\0a"s);
  EXPECT_TRUE(isEqual(text, NSString::stringWithUTF16({u"\xD800"
                                                       u"a",
                                                       2})));
}

TEST(BinaryPropertyListReader, AFaultNamesItsByte) {
  struct Case {
    File file;
    std::string fault;
  };
  const std::string past = "an object that reaches past the others at byte 8";
  const std::string list = "a container that reaches past the objects at byte 8";
  for (const auto& [file, text] :
       {Case{{{"\0"s}}, "an object of unknown kind at byte 8"},
        {{{"\x0F"}}, "an object of unknown kind at byte 8"},
        {{{"\x15" + std::string(32, '\0')}}, "an object of unknown kind at byte 8"},
        {{{"\x21\0\0"s}}, "an object of unknown kind at byte 8"},
        {{{"\x32\0\0\0\0"s}}, "an object of unknown kind at byte 8"},
        {{{"\x71z"}}, "an object of unknown kind at byte 8"},
        {{{"\xC1\0"s}}, "an object of unknown kind at byte 8"},
        {{{"\x80\x01"}}, "a reference that only archives have at byte 8"},
        {{{"\xA1\x01", "\x80\x01"}}, "a reference that only archives have at byte 10"},
        {{{"\x13\0\0"s}}, past},
        {{{"\x52z"}}, past},
        {{{"\x62\0z\0"s}}, past},
        {{{"\x4F\x13" + word(UINT64_MAX) + "z"}}, past},
        {{{"\x6F\x13" + word(INT64_MAX) + "z"}}, past},
        {{{"\xA2\0"s}}, list},
        {{{"\xD1\0"s}}, list},
        {{{"\xAF\x13" + word(UINT64_MAX)}}, list},
        {{{"\xDF\x13" + word(UINT64_MAX / 2)}}, list},
        {{{"\x5F"}}, "an object without a length at byte 8"},
        {{{"\x5F\x23" + word(0)}}, "an object without a length at byte 8"},
        {{{"\x5F\x14" + word(0) + word(0)}}, "an object without a length at byte 8"},
        {{{"\x5F\x11\0"s}}, "an object without a length at byte 8"},
        {{{"\x51\x80"}}, "an ASCII string holds other bytes at byte 8"},
        {{{"\x14" + word(1) + word(0)}}, "an integer of more than 64 bits at byte 8"},
        {{{"\x14" + word(UINT64_MAX) + word(1)}}, "an integer of more than 64 bits at byte 8"},
        {{{"\xA1\x01"}}, "a reference to no object at byte 10"},
        {{{"\xA1\0"s}}, "a container that holds itself at byte 8"},
        {{{"\xA1\x01", "\xD1\x02\0"s, "\x51z"}}, "a container that holds itself at byte 8"},
        {{{"\xD1\x01\x01", "\x08"}}, "a dictionary with a key that is no string at byte 8"}})
    EXPECT_EQ(faultOf(file), sentence(text));
}

TEST(BinaryPropertyListReader, ATrailerThatLiesIsRefused) {
  const std::vector<std::string> objects = {"\x08"};
  const std::string trailer = "a trailer that does not fit the file at byte ";
  for (const File& file :
       {File{objects, 2, 1, 1}, File{objects, 2, 1, UINT64_MAX}, File{objects, 0}, File{objects, 9},
        File{objects, 2, 0}, File{objects, 2, 9}, File{objects, 2, 1, 0, 0},
        File{objects, 2, 1, 0, 2}, File{objects, 2, 1, 0, UINT64_MAX},
        File{objects, 2, 1, 0, UINT64_MAX / 2 + 2}, File{objects, 2, 1, 0, 1, 0},
        File{objects, 2, 1, 0, 1, 8}, File{objects, 2, 1, 0, 1, 10},
        File{objects, 2, 1, 0, 1, UINT64_MAX}})
    EXPECT_EQ(faultOf(file).substr(0, sentence(trailer).size() - 1),
              sentence(trailer).substr(0, sentence(trailer).size() - 1));
}

TEST(BinaryPropertyListReader, EveryCutOfAFileIsRefused) {
  const std::string bytes = written(RandomList(7).dictionary(4), kBinary);
  ASSERT_TRUE(read(bytes));
  for (std::size_t length = 0; length < bytes.size(); ++length)
    EXPECT_NE(fault(std::string_view(bytes).substr(0, length)), "") << length;
}

TEST(BinaryPropertyListReader, EveryFlippedByteIsReadOrRefused) {
  const std::string bytes = written(RandomList(3).dictionary(3), kBinary);
  for (std::size_t at = 0; at < bytes.size(); ++at)
    for (int change : {1, 2, 0x10, 0x80, 0xFF}) {
      std::string other = bytes;
      other[at] = static_cast<char>(other[at] ^ change);
      Ref<NSError> error;
      const bool isRead = read(other, &error) != nullptr;
      EXPECT_EQ(isRead, error == nullptr);
    }
}

TEST(BinaryPropertyListReader, AnotherVersionIsRefused) {
  std::string bytes = File{{"\x08"}}.bytes();
  ASSERT_EQ(fault(bytes), "");
  bytes[7] = '1';
  EXPECT_EQ(fault(bytes), sentence("another version at byte 6"));
  EXPECT_EQ(fault("bplist"), sentence("another version at byte 6"));
  EXPECT_EQ(fault("bplist00"), sentence("a trailer that does not fit the file at byte 0"));
}

/// Containers of which each holds the next one twice.
File doubling(unsigned levels) {
  File file;
  for (unsigned i = 1; i <= levels; ++i) file.objects.push_back("\xA2" + word(i, 1) + word(i, 1));
  file.objects.push_back("\x51x");
  return file;
}

TEST(BinaryPropertyListReader, ASharedContainerIsReadAtEachOfItsPlaces) {
  auto list = read(doubling(3).bytes());
  ASSERT_TRUE(cast<NSArray>(list));
  EXPECT_NE(written(list, kXML).find("\t\t\t<string>x</string>"), std::string::npos);
}

TEST(BinaryPropertyListReader, PlacesThatMayChangeShareNoContainer) {
  auto list = read(doubling(3).bytes(), nullptr, NSPropertyListMutableContainers);
  auto* first = cast<NSMutableArray>(cast<NSArray>(list)->objectAtIndex(0));
  auto* second = cast<NSMutableArray>(cast<NSArray>(list)->objectAtIndex(1));
  ASSERT_TRUE(first && second);
  first->removeAllObjects();
  EXPECT_EQ(second->count(), 2u);
}

TEST(BinaryPropertyListReader, WhatADictionaryLetsGoOfIsSharedAllTheSame) {
  // Of two equal keys the later value stays; the other key and the other value have further places.
  const File file{{"\xA4\x01\x03\x04\x05", "\xD2\x02\x03\x04\x05", "\x51k", "\x51k", "\x51x",
                   "\xA1\x06", "\x51y"}};
  for (NSPropertyListReadOptions options : {0u, 1u}) {
    auto list = read(file.bytes(), nullptr, options);
    ASSERT_TRUE(list);
    auto expected = NSArray::arrayWithObjects(
        {NSDictionary::dictionaryWithPairs({{"k"_ns, NSArray::arrayWithObjects({"y"_ns})}}), "k"_ns,
         "x"_ns, NSArray::arrayWithObjects({"y"_ns})});
    EXPECT_TRUE(isEqual(list, expected));
  }
}

TEST(BinaryPropertyListReader, ASmallFileCannotUnfoldIntoAHugeList) {
  const std::string text = "shared objects make too large a list at byte ";
  for (unsigned levels : {20u, 60u, 200u})
    for (NSPropertyListReadOptions options : {0u, 1u}) {
      Ref<NSError> error;
      EXPECT_FALSE(read(doubling(levels).bytes(), &error, options));
      ASSERT_TRUE(error);
      EXPECT_NE(error->localizedDescription()->lossyUTF8().find(text), std::string::npos);
    }
  File longText{{"\xAF\x12" + word(200'000, 4) + std::string(200'000, '\x01'),
                 "\x4F\x12" + word(10'000, 4) + std::string(10'000, 'x')},
                4};
  EXPECT_NE(faultOf(longText).find(text), std::string::npos);
}

TEST(BinaryPropertyListReader, AByteForEachCopyOfAContainerBuysFewOfThem) {
  const auto copies = [](unsigned count) {
    return File{{"\xAF\x12" + word(count, 4) + std::string(count, '\x01'), "\xD0"}, 4};
  };
  const NSPropertyListReadOptions options = NSPropertyListMutableContainers;
  EXPECT_TRUE(read(copies(15'000).bytes(), nullptr, options));
  EXPECT_FALSE(read(copies(500'000).bytes(), nullptr, options));
  // Where nothing may change, all places have the same one.
  EXPECT_TRUE(read(copies(500'000).bytes()));
}

TEST(BinaryPropertyListReader, SharingCannotHideLevels) {
  // Each array holds the one before, and the top holds all of them, the shallowest first.
  File file;
  std::string top = "\xAF\x11" + word(600, 2);
  for (unsigned i = 1; i <= 600; ++i) top += word(i, 2);
  file.objects = {top, "\xA0"};
  for (unsigned i = 2; i <= 600; ++i) file.objects.push_back("\xA1" + word(i - 1, 2));
  file.referenceSize = 2;
  EXPECT_NE(faultOf(file).find("more than 512 levels of containers at byte "), std::string::npos);
}

TEST(BinaryPropertyListReader, LevelsBeyondFiveHundredAndTwelveAreRefused) {
  auto chain = [](unsigned levels) {
    File file{{}, 2, 2};
    for (unsigned i = 1; i < levels; ++i) file.objects.push_back("\xA1" + word(i, 2));
    file.objects.push_back("\xA0");
    return file;
  };
  EXPECT_EQ(faultOf(chain(512)), "");
  for (unsigned levels : {513u, 20000u})
    EXPECT_NE(faultOf(chain(levels)).find("more than 512 levels of containers"), std::string::npos);
}

}  // namespace
}  // namespace kbx
