#include "platform/propertylists/BinaryPropertyListWriter.h"

#include <gtest/gtest.h>

#include "platform/objects/NSNull.h"
#include "tests/support/PropertyLists.h"

namespace kbx {
namespace {

using namespace test;
using namespace std::string_literals;

/// The objects of a file that has few of them: without the head, table and trailer.
std::string objects(NSObject* list) {
  const std::string bytes = written(list, kBinary);
  if (!bytes.starts_with("bplist00")) return bytes;
  const std::size_t table = static_cast<unsigned char>(bytes.back());
  return bytes.substr(8, table - 8);
}

std::string real(double number) { return objects(NSNumber::numberWithDouble(number)); }
std::string integer(std::int64_t number) { return objects(NSNumber::numberWithInteger(number)); }

TEST(BinaryPropertyListWriter, AWholeFileIsHeadObjectsTableAndTrailer) {
  auto list = NSDictionary::dictionaryWithPairs(
      {{"b"_ns, NSArray::arrayWithObjects({"x"_ns, "b"_ns})}, {"a"_ns, "x"_ns}});
  EXPECT_EQ(written(list, kBinary),
            "bplist00"
            "\xD2\x01\x02\x03\x04"  // 0: a = 3, b = 4
            "\x51"s
            "a"
            "\x51"
            "b"
            "\x51"
            "x"
            "\xA2\x03\x02"           // 4: (3, 2): equal strings are one object
            "\x08\x0D\x0F\x11\x13"   // the offsets
            "\0\0\0\0\0\0\x01\x01"   // bytes of an offset, of a reference
            "\0\0\0\0\0\0\0\x05"     // objects
            "\0\0\0\0\0\0\0\0"       // the top
            "\0\0\0\0\0\0\0\x16"s);  // the table
}

TEST(BinaryPropertyListWriter, IntegersTakeAsFewBytesAsTheyNeed) {
  EXPECT_EQ(integer(0), "\x10\0"s);
  EXPECT_EQ(integer(255), "\x10\xFF");
  EXPECT_EQ(integer(256), "\x11\x01\0"s);
  EXPECT_EQ(integer(65536), "\x12\0\x01\0\0"s);
  EXPECT_EQ(integer(INT64_C(1) << 32), "\x13\0\0\0\x01\0\0\0\0"s);
  EXPECT_EQ(integer(-1), "\x13" + std::string(8, '\xFF'));
  EXPECT_EQ(objects(NSNumber::numberWithUnsignedInteger(UINT64_MAX)),
            "\x14" + std::string(8, '\0') + std::string(8, '\xFF'));
  EXPECT_EQ(objects(NSNumber::numberWithUnsignedInteger(7)), "\x10\x07");
}

TEST(BinaryPropertyListWriter, OtherLeavesHaveTheirOwnMarkers) {
  EXPECT_EQ(real(1), "\x23\x3F\xF0\0\0\0\0\0\0"s);
  EXPECT_EQ(objects(NSDate::dateWithTimeIntervalSinceReferenceDate(1)),
            "\x33\x3F\xF0\0\0\0\0\0\0"s);
  EXPECT_EQ(objects(NSNumber::numberWithBool(true)), "\x09");
  EXPECT_EQ(objects(NSNumber::numberWithBool(false)), "\x08");
  EXPECT_EQ(objects(NSData::dataWithBytes("ab")), "\x42"s + "ab");
  EXPECT_EQ(objects("\x01"_ns), "\x51\x01");
  EXPECT_EQ(objects("aé"_ns), "\x62\0a\0\xE9"s);
  EXPECT_EQ(objects("😀"_ns), "\x62\xD8\x3D\xDE\0"s);
  EXPECT_EQ(objects(string(std::string(15, 'a'))), "\x5F\x10\x0F" + std::string(15, 'a'));
}

TEST(BinaryPropertyListWriter, EqualNumbersOfOtherKindsAreObjectsOfTheirOwn) {
  auto list = NSArray::arrayWithObjects(
      {NSNumber::numberWithBool(true).get(), NSNumber::numberWithInteger(1).get(),
       NSNumber::numberWithDouble(1).get(), NSNumber::numberWithUnsignedInteger(1).get(),
       NSNumber::numberWithDouble(0.0).get(), NSNumber::numberWithDouble(-0.0).get(),
       NSDate::dateWithTimeIntervalSinceReferenceDate(1).get()});
  EXPECT_TRUE(objects(list).starts_with("\xA7\x01\x02\x03\x02\x04\x05\x06"));
  auto back = read(written(list, kBinary));
  auto* array = cast<NSArray>(back);
  EXPECT_EQ(cast<NSNumber>(array->objectAtIndex(0))->kind(), NSNumber::Kind::Boolean);
  EXPECT_EQ(cast<NSNumber>(array->objectAtIndex(1))->kind(), NSNumber::Kind::Signed);
  EXPECT_EQ(cast<NSNumber>(array->objectAtIndex(2))->kind(), NSNumber::Kind::Real);
  EXPECT_TRUE(std::signbit(cast<NSNumber>(array->objectAtIndex(5))->doubleValue()));
}

TEST(BinaryPropertyListWriter, ReferencesAndOffsetsGrowWithTheFile) {
  for (std::int64_t count : {254, 255, 256, 65534, 65535, 65536, 70000}) {
    NSArray::Elements elements;
    for (std::int64_t i = 0; i < count; ++i) elements.push_back(NSNumber::numberWithInteger(i));
    auto list = NSArray::arrayWithElements(std::move(elements));
    EXPECT_TRUE(isEqual(read(written(list, kBinary)), list)) << count;
  }
}

TEST(BinaryPropertyListWriter, AListThatRepeatsALongTextCanBeReadAgain) {
  // As one object with many references this would be a file of 17 KB that unfolds to 42 MB.
  auto longText = string(std::string(3000, 'x'));
  NSArray::Elements elements(14'000, longText);
  auto list = NSArray::arrayWithElements(std::move(elements));
  EXPECT_TRUE(isEqual(read(written(list, kBinary)), list));
}

TEST(BinaryPropertyListWriter, OnlyWhatXMLCannotSayIsAllowedBesides) {
  auto list = NSArray::arrayWithObjects(
      {"\x01"_ns, NSDate::dateWithTimeIntervalSinceReferenceDate(1e300).get()});
  EXPECT_TRUE(isEqual(read(written(list, kBinary)), list));
  const std::string start = "The property list couldn’t be written: ";
  EXPECT_EQ(written(NSNull::null(), kBinary),
            start + "an object of class NSNull stands at the top.");
  EXPECT_EQ(written(NSString::stringWithUTF16({u"\xD800", 1}), kBinary),
            start + "a string holds a surrogate alone at the top.");
}

}  // namespace
}  // namespace kbx
