#include "host/results/PropertyListWriter.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "tests/support/Nesting.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

/// Without the three lines of the head and that of the foot.
std::string written(NSObject* value) {
  StringOutput output;
  PropertyListWriter(output).value(value);
  return output.text();
}
std::string written(std::u16string_view units) { return written(NSString::stringWithUTF16(units)); }

/// What a reader finds in it; absent when it is malformed.
Ref<NSObject> readBack(NSObject* value) {
  StringOutput output;
  PropertyListWriter list(output);
  list.begin();
  list.beginArray();
  list.value(value);
  list.endArray();
  list.end();
  auto read = NSPropertyListSerialization::propertyListWithData(
      data(output.text()), NSPropertyListImmutable, nullptr, nullptr);
  auto* array = cast<NSArray>(read);
  return array && array->count() == 1 ? Ref<NSObject>(array->objectAtIndex(0)) : nullptr;
}

TEST(PropertyListWriter, EachKindOfValueHasItsForm) {
  using Real = std::numeric_limits<double>;
  struct Case {
    Ref<NSObject> value;
    const char* text;
  };
  for (const auto& [value, expected] :
       {Case{string(""), "<string></string>\n"},
        {string("a<b>&\"c\""), "<string>a&lt;b&gt;&amp;\"c\"</string>\n"},
        {NSNumber::numberWithBool(true), "<true/>\n"},
        {NSNumber::numberWithBool(false), "<false/>\n"},
        {NSNumber::numberWithInteger(INT64_MIN), "<integer>-9223372036854775808</integer>\n"},
        {NSNumber::numberWithUnsignedInteger(UINT64_MAX),
         "<integer>18446744073709551615</integer>\n"},
        {NSNumber::numberWithDouble(0.1), "<real>0.1</real>\n"},
        {NSNumber::numberWithDouble(Real::infinity()), "<real>+infinity</real>\n"},
        {NSNumber::numberWithDouble(-Real::infinity()), "<real>-infinity</real>\n"},
        {NSNumber::numberWithDouble(Real::quiet_NaN()), "<real>nan</real>\n"},
        {NSDate::dateWithTimeIntervalSince1970(1795233360), "<date>2026-11-21T03:56:00Z</date>\n"},
        {NSDate::dateWithTimeIntervalSince1970(1795233360.9),
         "<date>2026-11-21T03:56:00Z</date>\n"},
        {data("foob"), "<data>Zm9vYg==</data>\n"},
        {NSArray::array(), "<array>\n</array>\n"},
        {NSDictionary::dictionaryWithPairs({{"b"_ns, "1"_ns}, {"a"_ns, NSArray::array()}}),
         "<dict>\n\t<key>a</key>\n\t<array>\n\t</array>\n\t<key>b</key>\n\t<string>1</string>\n"
         "</dict>\n"}}) {
    EXPECT_EQ(written(value), expected);
    EXPECT_TRUE(readBack(value)) << expected;
  }
}

TEST(PropertyListWriter, ValuesComeBackAsTheyWere) {
  for (const Ref<NSObject>& value : std::initializer_list<Ref<NSObject>>{
           NSNumber::numberWithDouble(1.0 / 3), NSNumber::numberWithDouble(5e-324),
           NSNumber::numberWithUnsignedInteger(UINT64_MAX), string("ä€😀\r\n\t "),
           data(std::string(100'000, '\xFE')), NSNumber::numberWithBool(true)})
    EXPECT_TRUE(isEqual(readBack(value), value)) << text(value).substr(0, 40);
}

TEST(PropertyListWriter, EveryUnitComesBackUnlessXMLCannotHoldIt) {
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    const auto c = static_cast<char16_t>(unit);
    const bool isImpossible = (c < 0x20 && c != '\t' && c != '\n' && c != '\r') ||
                              (c >= 0xD800 && c < 0xE000) || c >= 0xFFFE;
    auto expected = NSString::stringWithUTF16(std::u16string{u'a', isImpossible ? u'\xFFFD' : c});
    ASSERT_TRUE(isEqual(readBack(NSString::stringWithUTF16(std::u16string{u'a', c})), expected))
        << unit;
  }
}

TEST(PropertyListWriter, WhatDrivesATerminalIsAReference) {
  EXPECT_EQ(written(u"\x1B[2J\x9B\u202E\x7F"),
            "<string>\xEF\xBF\xBD[2J&#155;&#8238;&#127;</string>\n");
}

TEST(PropertyListWriter, WhatHasNoFormIsLeftOutWithItsKey) {
  auto dictionary = NSDictionary::dictionaryWithPairs(
      {{"a"_ns, NSNull::null()},
       {"b"_ns, NSDate::dateWithTimeIntervalSince1970(1e18)},
       {"c"_ns, NSArray::arrayWithObjects({NSNull::null(), "x"_ns, NSNull::null()})},
       {"d"_ns, NSNull::null()}});
  EXPECT_EQ(written(dictionary),
            "<dict>\n\t<key>c</key>\n\t<array>\n\t\t<string>x</string>\n\t</array>\n</dict>\n");
  EXPECT_EQ(written(NSNull::null()), "");
}

TEST(PropertyListWriter, APathIsTextWhereTextCanHoldIt) {
  struct Case {
    const char *path, *element;
  };
  for (auto [path, element] : {Case{"a/ä.eml", "<string>a/ä.eml</string>\n"},
                               {"a\nb", "<string>a\nb</string>\n"},
                               {"a\xE9", "<data>Yek=</data>\n"},
                               {"a\x1B", "<data>YRs=</data>\n"},
                               {"a\xEF\xBF\xBF", "<data>Ye+/vw==</data>\n"},
                               {"", "<string></string>\n"}}) {
    StringOutput output;
    PropertyListWriter(output).path(path);
    EXPECT_EQ(output.text(), element);
  }
}

TEST(PropertyListWriter, NestingEndsWhereReadersDo) {
  EXPECT_TRUE(readBack(nestedArrays(500)));
  EXPECT_TRUE(readBack(nestedArrays(5000)));
  EXPECT_TRUE(readBack(nestedDictionaries(5000)));
  auto list = NSMutableArray::array();
  list->addObject(list);
  EXPECT_TRUE(readBack(list));
  list->removeAllObjects();
}

TEST(PropertyListWriter, WhatHoldsTheSameAgainAndAgainIsBounded) {
  EXPECT_LT(written(doubledArrays(100, "leaf"_ns)).size(), std::size_t{1} << 26);
}

}  // namespace
}  // namespace kbx
