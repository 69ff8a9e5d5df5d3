#include "platform/propertylists/XMLPropertyListWriter.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/objects/NSNull.h"
#include "tests/support/PropertyLists.h"

namespace kbx {
namespace {

using namespace test;

constexpr char kHead[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";

/// The lines between the head and the foot.
std::string body(NSObject* list) {
  const std::string text = written(list, kXML);
  const std::string foot = "</plist>\n";
  if (!text.starts_with(kHead) || !text.ends_with(foot)) return text;
  return text.substr(sizeof kHead - 1, text.size() - (sizeof kHead - 1) - foot.size());
}

std::string body(double number) { return body(NSNumber::numberWithDouble(number)); }
std::string body(std::int64_t number) { return body(NSNumber::numberWithInteger(number)); }
std::string date(double seconds) {
  return body(NSDate::dateWithTimeIntervalSinceReferenceDate(seconds));
}

TEST(XMLPropertyListWriter, TheOutermostContainerIsNotIndented) {
  auto inner = NSArray::arrayWithObjects(
      {"b"_ns, NSNumber::numberWithBool(true).get(), NSNumber::numberWithBool(false).get()});
  auto list = NSDictionary::dictionaryWithPairs({{"z"_ns, "last"_ns}, {"a"_ns, inner}});
  EXPECT_EQ(body(list),
            "<dict>\n"
            "\t<key>a</key>\n"
            "\t<array>\n"
            "\t\t<string>b</string>\n"
            "\t\t<true/>\n"
            "\t\t<false/>\n"
            "\t</array>\n"
            "\t<key>z</key>\n"
            "\t<string>last</string>\n"
            "</dict>\n");
}

TEST(XMLPropertyListWriter, EmptyContainersAreOneTag) {
  EXPECT_EQ(body(NSDictionary::dictionary()), "<dict/>\n");
  EXPECT_EQ(body(NSArray::array()), "<array/>\n");
  EXPECT_EQ(body(""_ns), "<string></string>\n");
}

TEST(XMLPropertyListWriter, KeysComeInTheOrderOfTheirUnits) {
  auto list = NSMutableDictionary::dictionary();
  for (auto key : {"b", "B", "a10", "a9", "", "\xEF\xBF\xBD", "\xF0\x9F\x98\x80", "é"})
    list->setObjectForKey("v"_ns, string(key));
  const std::string text = body(list);
  std::size_t before = 0;
  // The smiling face is two units from D83D on, and so before U+FFFD.
  for (auto key : {"", "B", "a10", "a9", "b", "é", "\xF0\x9F\x98\x80", "\xEF\xBF\xBD"}) {
    const std::size_t at = text.find("<key>" + std::string(key) + "</key>");
    ASSERT_NE(at, text.npos) << key;
    EXPECT_GT(at, before) << key;
    before = at;
  }
}

TEST(XMLPropertyListWriter, MarkupInTextIsEscaped) {
  EXPECT_EQ(body("a<b>&\"'"_ns), "<string>a&lt;b&gt;&amp;\"'</string>\n");
  EXPECT_EQ(body("a\tb\nc\rd"_ns), "<string>a\tb\nc&#13;d</string>\n");
  EXPECT_EQ(body("日本😀"_ns), "<string>日本😀</string>\n");
}

TEST(XMLPropertyListWriter, AnEscapeIsFoundAtEveryPlace) {
  struct Case {
    char letter;
    const char* escape;
  };
  // What differs from them in one bit must not be taken for them.
  for (std::string_view around : {"abcdefghijklmnopqrstu", "=;:'%$\"6.\x7F?,~|\t\n -LMf}"})
    for (auto [letter, escape] :
         {Case{'<', "&lt;"}, {'>', "&gt;"}, {'&', "&amp;"}, {'\r', "&#13;"}})
      for (std::size_t at = 0; at <= around.size(); ++at) {
        std::string sample(around), expected(around);
        sample.insert(at, 1, letter), expected.insert(at, escape);
        EXPECT_EQ(body(string(sample)), "<string>" + expected + "</string>\n");
        EXPECT_EQ(body(string(sample + "é")), "<string>" + expected + "é</string>\n");
      }
}

TEST(XMLPropertyListWriter, AControlCharacterIsRefusedAtEveryPlace) {
  for (char letter = 0; letter < 0x20; ++letter)
    for (std::size_t at = 0; at < 40; ++at)
      for (const char* end : {"", "é"}) {
        std::string sample(40, 'x');
        sample[at] = letter;
        const bool isAllowed = letter == '\t' || letter == '\n' || letter == '\r';
        EXPECT_EQ(written(string(sample + end), kXML).starts_with("<?xml"), isAllowed)
            << int{letter} << " at " << at;
        EXPECT_TRUE(written(string(sample + end), kBinary).starts_with("bplist00"));
      }
}

TEST(XMLPropertyListWriter, IntegersCoverTheSignedAndTheUnsignedRange) {
  using Limits = std::numeric_limits<std::int64_t>;
  EXPECT_EQ(body(std::int64_t{0}), "<integer>0</integer>\n");
  EXPECT_EQ(body(Limits::min()), "<integer>-9223372036854775808</integer>\n");
  EXPECT_EQ(body(Limits::max()), "<integer>9223372036854775807</integer>\n");
  EXPECT_EQ(body(NSNumber::numberWithUnsignedInteger(UINT64_MAX)),
            "<integer>18446744073709551615</integer>\n");
}

TEST(XMLPropertyListWriter, RealNumbersHaveSeventeenDigitsWhereNeeded) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  struct Case {
    double number;
    const char* text;
  };
  for (auto [number, text] : {Case{0, "0.0"},
                              {-0.0, "-0.0"},
                              {1, "1"},
                              {1.5, "1.5"},
                              {0.1, "0.10000000000000001"},
                              {-1e300, "-1.0000000000000001e+300"},
                              {5e-324, "4.9406564584124654e-324"},
                              {kInfinity, "+infinity"},
                              {-kInfinity, "-infinity"},
                              {std::nan(""), "nan"}})
    EXPECT_EQ(body(number), "<real>" + std::string(text) + "</real>\n");
}

TEST(XMLPropertyListWriter, DatesAreWholeSecondsOfUniversalTime) {
  struct Case {
    double seconds;
    const char* text;
  };
  for (auto [seconds, text] : {Case{0, "2001-01-01T00:00:00Z"},
                               {0.999, "2001-01-01T00:00:00Z"},
                               {-0.5, "2000-12-31T23:59:59Z"},
                               {-1e-30, "2000-12-31T23:59:59Z"},
                               {-978307200, "1970-01-01T00:00:00Z"},
                               {252460799, "2008-12-31T23:59:59Z"},
                               {-63113904000, "0001-01-01T00:00:00Z"},
                               {252423993599, "9999-12-31T23:59:59Z"},
                               {-63200000000, "-0002-04-10T12:26:40Z"}})
    EXPECT_EQ(date(seconds), "<date>" + std::string(text) + "</date>\n");
}

TEST(XMLPropertyListWriter, DataIsBrokenIntoLinesThatTheIndentShortens) {
  auto data = NSData::dataWithBytes(std::string(58, 'x'));
  const std::string digits = "eHh4";
  auto times = [&](int count) {
    std::string text;
    for (; count > 0; --count) text += digits;
    return text;
  };
  EXPECT_EQ(body(data), "<data>\n" + times(19) + "\neA==\n</data>\n");
  Ref<NSObject> list = NSArray::arrayWithObjects({data.get()});
  EXPECT_EQ(body(list), "<array>\n\t<data>\n\t" + times(17) + "\n\t" + times(2) +
                            "eA==\n\t</data>\n</array>\n");
  for (int i = 0; i < 9; ++i) list = NSArray::arrayWithObjects({list.get()});
  // Beyond eight tabs lines get no shorter, and are indented no further.
  EXPECT_NE(body(list).find("\n\t\t\t\t\t\t\t\t" + times(3) + "\n"), std::string::npos);
  EXPECT_EQ(body(NSData::data()), "<data>\n</data>\n");
}

TEST(XMLPropertyListWriter, WhatNoListCanHoldIsNamedWithItsKeyPath) {
  auto inside = [](NSObject* value) {
    auto inner = NSArray::arrayWithObjects({"x"_ns, value});
    auto list = NSDictionary::dictionaryWithPairs(
        {{"ok"_ns, "fine"_ns}, {"outer"_ns, NSDictionary::dictionaryWithPairs({{"k"_ns, inner}})}});
    return written(list, kXML);
  };
  const std::string start = "The property list couldn’t be written: ";
  const std::string place = " at “outer.k[1]”.";
  auto lone = NSString::stringWithUTF16({u"a\xDC00", 2});
  auto badDate = NSDate::dateWithTimeIntervalSinceReferenceDate(std::nan(""));
  auto badKey = NSDictionary::dictionaryWithPairs({{NSNumber::numberWithInteger(1), "v"_ns}});
  EXPECT_EQ(inside(NSNull::null()), start + "an object of class NSNull stands" + place);
  EXPECT_EQ(inside(lone), start + "a string holds a surrogate alone" + place);
  EXPECT_EQ(inside("\x01"_ns),
            start + "a string holds a character that XML does not allow" + place);
  EXPECT_EQ(inside(string("\xEF\xBF\xBF")),
            start + "a string holds a character that XML does not allow" + place);
  EXPECT_EQ(inside(badDate), start + "a date beyond the calendar stands" + place);
  EXPECT_EQ(inside(badKey), start +
                                "a dictionary has a key of class NSNumber, where only strings "
                                "may be," +
                                place);
  EXPECT_EQ(inside(NSDictionary::dictionaryWithPairs({{lone, "v"_ns}})),
            start + "a key holds a surrogate alone" + place);
  EXPECT_EQ(written(NSNull::null(), kXML), start + "an object of class NSNull stands at the top.");
}

}  // namespace
}  // namespace kbx
