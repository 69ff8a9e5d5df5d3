#include "host/results/JSONWriter.h"

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>

#include "platform/files/NSURL.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "platform/text/Base64.h"
#include "tests/support/Nesting.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using nlohmann::json;
using Layout = JSONWriter::Layout;

std::string written(NSObject* value, Layout layout = Layout::OneLine) {
  StringOutput output;
  JSONWriter(output, layout).value(value);
  return output.text();
}
std::string written(std::u16string_view units) { return written(NSString::stringWithUTF16(units)); }

TEST(JSONWriter, EachKindOfValueHasItsForm) {
  using Real = std::numeric_limits<double>;
  struct Case {
    Ref<NSObject> value;
    const char* text;
  };
  for (const auto& [value, expected] :
       {Case{nullptr, "null"},
        {Ref<NSObject>(NSNull::null()), "null"},
        {string(""), "\"\""},
        {NSNumber::numberWithBool(true), "true"},
        {NSNumber::numberWithBool(false), "false"},
        {NSNumber::numberWithInteger(0), "0"},
        {NSNumber::numberWithInteger(INT64_MIN), "-9223372036854775808"},
        {NSNumber::numberWithUnsignedInteger(UINT64_MAX), "18446744073709551615"},
        {NSNumber::numberWithDouble(0.1), "0.1"},
        {NSNumber::numberWithDouble(1e300), "1e+300"},
        {NSNumber::numberWithDouble(-0.0), "-0"},
        {NSNumber::numberWithDouble(5e-324), "5e-324"},
        {NSNumber::numberWithDouble(Real::quiet_NaN()), "null"},
        {NSNumber::numberWithDouble(Real::infinity()), "null"},
        {NSNumber::numberWithDouble(-Real::infinity()), "null"},
        {NSDate::dateWithTimeIntervalSince1970(1795233360), "\"2026-11-21T03:56:00Z\""},
        {NSDate::dateWithTimeIntervalSince1970(1795233360.5), "\"2026-11-21T03:56:00.5Z\""},
        {NSDate::dateWithTimeIntervalSince1970(Real::quiet_NaN()), "null"},
        {data(""), "\"\""},
        {data("foob"), "\"Zm9vYg==\""},
        {NSArray::array(), "[]"},
        {NSDictionary::dictionary(), "{}"},
        {NSURL::fileURLWithFileSystemRepresentation("/a b", false), "\"file:///a%20b\""}})
    EXPECT_EQ(written(value), expected);
}

TEST(JSONWriter, IntegersAreExactWhenReadBack) {
  EXPECT_EQ(json::parse(written(NSNumber::numberWithUnsignedInteger(UINT64_MAX))), UINT64_MAX);
  EXPECT_EQ(json::parse(written(NSNumber::numberWithInteger(INT64_MIN))), INT64_MIN);
}

TEST(JSONWriter, RealNumbersAreExactWhenReadBack) {
  for (double value : {0.1, 1.0 / 3, 1e-310, 1.7976931348623157e308, 123456789.125})
    EXPECT_EQ(json::parse(written(NSNumber::numberWithDouble(value))).get<double>(), value);
}

TEST(JSONWriter, EveryUnitComesBackAsItWas) {
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    if (unit >= 0xD800 && unit < 0xE000) continue;
    const std::u16string units{u'a', static_cast<char16_t>(unit), u'b'};
    auto original = NSString::stringWithUTF16(units);
    ASSERT_EQ(json::parse(written(original)), *original->UTF8String()) << unit;
  }
}

TEST(JSONWriter, WhatDrivesATerminalIsEscaped) {
  EXPECT_EQ(written(u"\x1B[2J\x9B\u202E\x7F"), "\"\\u001b[2J\\u009b\\u202e\\u007f\"");
  EXPECT_EQ(written(u"\"\\/\t\r\n\b"), "\"\\\"\\\\/\\t\\r\\n\\u0008\"");
}

TEST(JSONWriter, LoneSurrogatesAreEscapedAndPairsAreUTF8) {
  EXPECT_EQ(written(u"\xD83D"), "\"\\ud83d\"");
  EXPECT_EQ(written(u"x\xDE00"), "\"x\\ude00\"");
  EXPECT_EQ(written(u"\xD83D\xDE00"), "\"😀\"");
  EXPECT_EQ(written(u"\xD83D\xD83D\xDE00"), "\"\\ud83d😀\"");
}

TEST(JSONWriter, LongTextComesBackAsItWas) {
  std::string ascii, mixed;
  for (int i = 0; i < 20'000; ++i) ascii += "Line " + std::to_string(i) + " \"q\"\r\n";
  for (int i = 0; i < 20'000; ++i) mixed += "Zeile ä€😀\x01\r\n";
  EXPECT_EQ(json::parse(written(string(ascii))), ascii);
  EXPECT_EQ(json::parse(written(string(mixed))), mixed);
}

TEST(JSONWriter, KeysAreSorted) {
  auto dictionary = NSDictionary::dictionaryWithPairs(
      {{"b"_ns, "1"_ns}, {"a"_ns, NSArray::arrayWithObjects({"2"_ns, "3"_ns})}});
  EXPECT_EQ(written(dictionary), R"({"a": ["2", "3"], "b": "1"})");
}

TEST(JSONWriter, TheIndentedLayoutHasOneValueALine) {
  auto dictionary = NSDictionary::dictionaryWithPairs(
      {{"b"_ns, NSDictionary::dictionary()},
       {"a"_ns, NSArray::arrayWithObjects({"2"_ns, NSArray::array()})}});
  EXPECT_EQ(written(dictionary, Layout::Indented),
            "{\n"
            "  \"a\": [\n"
            "    \"2\",\n"
            "    []\n"
            "  ],\n"
            "  \"b\": {}\n"
            "}");
}

/// An object of an importer that breaks the rule about descriptions.
class Undescribed final : public NSObject {
 public:
  static Ref<NSObject> make() { return Ref<NSObject>::adopt(new Undescribed); }
  Ref<NSString> description() const override { return nullptr; }
};

TEST(JSONWriter, AnAbsentDescriptionIsTextAllTheSame) {
  auto odd = Undescribed::make();
  EXPECT_EQ(written(NSDictionary::dictionaryWithPairs({{odd, odd}})), "{\"(null)\": \"(null)\"}");
}

TEST(JSONWriter, LongDataIsOneText) {
  std::string bytes(200'001, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7 >> 3);
  EXPECT_EQ(written(data(bytes)), '"' + base64FromBytes(bytes) + '"');
}

TEST(JSONWriter, EndlessNestingEndsInNull) {
  auto list = NSMutableArray::array();
  list->addObject(list);
  for (auto layout : {Layout::OneLine, Layout::Indented}) {
    const std::string text = written(list, layout);
    EXPECT_TRUE(json::accept(text));
    EXPECT_NE(text.find("null"), std::string::npos);
  }
  list->removeAllObjects();
}

TEST(JSONWriter, WhatHoldsTheSameAgainAndAgainIsBounded) {
  auto doubled = doubledArrays(100, "leaf"_ns);
  auto list = NSMutableArray::array();
  list->addObject(list);
  list->addObject(list);
  for (auto layout : {Layout::OneLine, Layout::Indented}) {
    for (NSObject* endless : {static_cast<NSObject*>(list), static_cast<NSObject*>(doubled)}) {
      const std::string text = written(endless, layout);
      EXPECT_TRUE(json::accept(text));
      EXPECT_LT(text.size(), std::size_t{1} << 25);
    }
  }
  list->removeAllObjects();
}

TEST(JSONWriter, ALongValueIsWrittenWhole) {
  // Longer than what may be written again, and with a part that is written several times.
  auto part = NSArray::arrayWithObjects({"a"_ns, NSNull::null()});
  auto longText = string(std::string(std::size_t{1} << 25, 'x'));
  auto list = NSMutableArray::array();
  for (int i = 0; i < 3; ++i) list->addObject(longText);
  for (int i = 0; i < 1000; ++i) list->addObject(part);
  std::string expected;
  for (const auto& element : *list) expected += (expected.empty() ? "[" : ", ") + written(element);
  EXPECT_TRUE(written(list) == expected + "]");
}

}  // namespace
}  // namespace kbx
