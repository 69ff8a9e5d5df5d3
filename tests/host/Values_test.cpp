#include "host/workers/Values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

std::string bytesOf(NSObject* value) {
  std::string bytes;
  appendValues(bytes, NSDictionary::dictionaryWithPairs({{"key"_ns, value}}));
  return bytes;
}

Ref<NSObject> thereAndBack(NSObject* value) {
  auto values = valuesOfBytes(bytesOf(value));
  return values ? values->objectForKey("key"_ns) : nullptr;
}

Ref<NSArray> nested(std::size_t levels) {
  auto array = NSArray::array();
  for (; levels > 1; --levels) array = NSArray::arrayWithObjects({array.get()});
  return array;
}

TEST(Values, EveryKindComesBackAsItWas) {
  const std::string longText(100'000, 'x');
  for (const auto& value : std::initializer_list<Ref<NSObject>>{
           ""_ns, "text"_ns, string("Straße 日本 😀"), string(longText + "ä"),
           NSString::stringWithUTF16(u"\xDC00\xD800 lone"), NSNumber::numberWithBool(false),
           NSNumber::numberWithInteger(INT64_MIN), NSNumber::numberWithUnsignedInteger(UINT64_MAX),
           NSNumber::numberWithDouble(-0.1), NSDate::dateWithTimeIntervalSinceReferenceDate(1e300),
           data(""), data("bytes"), NSNull::null(), NSArray::array(), NSDictionary::dictionary(),
           NSArray::arrayWithObjects({"a"_ns, NSNull::null(), NSArray::array().get()})}) {
    auto back = thereAndBack(value);
    ASSERT_TRUE(back) << text(descriptionOf(value));
    EXPECT_TRUE(isEqual(back, value)) << text(descriptionOf(value));
  }
}

TEST(Values, ANumberKeepsItsKind) {
  for (const auto& number : {NSNumber::numberWithBool(true), NSNumber::numberWithInteger(1),
                             NSNumber::numberWithUnsignedInteger(1), NSNumber::numberWithDouble(1)})
    EXPECT_EQ(cast<NSNumber>(thereAndBack(number))->kind(), number->kind());
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(
      std::isnan(cast<NSNumber>(thereAndBack(NSNumber::numberWithDouble(nan)))->doubleValue()));
}

/// A dictionary with one key, and arrays in arrays for its value. No writer goes so deep.
std::string bytesOfLevels(int levels) {
  const auto tagged = [](char tag) {
    const std::uint64_t one = 1;
    return tag + std::string(reinterpret_cast<const char*>(&one), sizeof one);
  };
  std::string bytes = tagged('m') + tagged('c') + "k";
  for (int level = 0; level < levels; ++level) bytes += tagged('a');
  return bytes + "n";
}

TEST(Values, LevelsEndWhereThoseOfPropertyListsDo) {
  EXPECT_TRUE(thereAndBack(nested(511)));
  EXPECT_FALSE(thereAndBack(nested(512)));
  EXPECT_TRUE(valuesOfBytes(bytesOfLevels(500)));
  EXPECT_FALSE(valuesOfBytes(bytesOfLevels(20'000)));
}

TEST(Values, BytesThatAreCutOffOrGoOnAreRefused) {
  const std::string bytes = bytesOf(NSArray::arrayWithObjects(
      {"text"_ns, string("日本"), NSNumber::numberWithInteger(1), data("bytes")}));
  ASSERT_TRUE(valuesOfBytes(bytes));
  for (std::size_t size = 0; size < bytes.size(); ++size)
    EXPECT_FALSE(valuesOfBytes(bytes.substr(0, size))) << size;
  EXPECT_FALSE(valuesOfBytes(bytes + "n"));
}

TEST(Values, LengthsBeyondTheBytesAreRefused) {
  for (char tag : {'c', 'w', 'b', 'a', 'm'})
    for (std::uint64_t length : {std::uint64_t{100}, UINT64_MAX / 2 + 1, UINT64_MAX}) {
      std::string bytes(1, tag);
      bytes.append(reinterpret_cast<const char*>(&length), sizeof length).append("nnnn");
      EXPECT_FALSE(valuesOfBytes(bytes));
      EXPECT_FALSE(textOfBytes(bytes));
    }
}

TEST(Values, KeysAreTextsAndTextsAreUTF8) {
  const std::uint64_t one = 1;
  const std::string length(reinterpret_cast<const char*>(&one), sizeof one);
  EXPECT_FALSE(valuesOfBytes("m" + length + "nn"));
  EXPECT_TRUE(valuesOfBytes("m" + length + "c" + length + "kn"));
  EXPECT_FALSE(valuesOfBytes("m" + length + "c" + length + "\xFFn"));
  EXPECT_FALSE(valuesOfBytes("c" + length + "k")) << "no dictionary";
}

TEST(Values, DisturbedBytesNeverDoHarm) {
  const std::string bytes = bytesOf(NSArray::arrayWithObjects(
      {"text"_ns, string("日本"), NSDictionary::dictionaryWithPairs({{"k"_ns, "v"_ns}}).get()}));
  std::mt19937 random(7);
  for (int round = 0; round < 20'000; ++round) {
    std::string disturbed = bytes;
    for (int i = 0; i < 3; ++i)
      disturbed[random() % disturbed.size()] = static_cast<char>(random());
    if (auto values = valuesOfBytes(disturbed)) {
      std::string again;
      appendValues(again, values);
      EXPECT_TRUE(isEqual(valuesOfBytes(again), values) || again.find('r') != again.npos ||
                  again.find('d') != again.npos)
          << "only a number that is none differs from itself";
    }
  }
}

TEST(Values, AnErrorKeepsDomainCodeAndDescription) {
  auto error = NSError::errorWithDomain(
      "D"_ns, -7,
      NSDictionary::dictionaryWithPairs(
          {{NSLocalizedDescriptionKey(), NSString::stringWithUTF16(u"caf\xDCE9").get()}}));
  auto back = errorOfBytes(bytesOfError(error));
  ASSERT_TRUE(back);
  EXPECT_EQ(text(back->domain()), "D");
  EXPECT_EQ(back->code(), -7);
  EXPECT_TRUE(isEqual(back->localizedDescription(), error->localizedDescription()));
  EXPECT_FALSE(errorOfBytes(bytesOf("x"_ns)));
  EXPECT_FALSE(errorOfBytes(""));
}

}  // namespace
}  // namespace kbx
