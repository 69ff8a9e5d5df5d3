#include "platform/propertylists/XMLPropertyListReader.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>

#include "tests/support/PropertyLists.h"

namespace kbx {
namespace {

using namespace test;

std::string plist(std::string_view body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n" +
         std::string(body) + "\n</plist>\n";
}

std::string faultOf(std::string_view body) { return fault(plist(body)); }

Ref<NSObject> readBody(std::string_view body) { return read(plist(body)); }

std::u16string wide(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

/// The units as bytes, the low one first or last.
std::string bytes(std::u16string_view units, bool isLittle) {
  std::string text;
  for (char16_t unit : units) {
    const char low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
    text += isLittle ? low : high;
    text += isLittle ? high : low;
  }
  return text;
}

TEST(XMLPropertyListReader, EveryKindOfLeafIsRead) {
  struct Case {
    const char* xml;
    Ref<NSObject> value;
  };
  auto integer = [](std::int64_t value) { return NSNumber::numberWithInteger(value); };
  auto real = [](double value) { return NSNumber::numberWithDouble(value); };
  auto date = [](double value) { return NSDate::dateWithTimeIntervalSinceReferenceDate(value); };
  for (const auto& [xml, value] :
       {Case{"<string>a&lt;b&#233;<![CDATA[<&]]>\n c</string>", string("a<bé<&\n c")},
        {"<string/>", string("")},
        {"<string>a<!-- not this -->b</string>", string("ab")},
        {"<integer> -12\n</integer>", integer(-12)},
        {"<integer>+7</integer>", integer(7)},
        {"<integer>0x1F</integer>", integer(31)},
        {"<integer>-9223372036854775808</integer>", integer(INT64_MIN)},
        {"<integer>18446744073709551615</integer>",
         NSNumber::numberWithUnsignedInteger(UINT64_MAX)},
        {"<real>1.5e3</real>", real(1500)},
        {"<real> -0.25 </real>", real(-0.25)},
        {"<real>+Infinity</real>", real(std::numeric_limits<double>::infinity())},
        {"<real>-inf</real>", real(-std::numeric_limits<double>::infinity())},
        {"<true/>", NSNumber::numberWithBool(true)},
        {"<false></false>", NSNumber::numberWithBool(false)},
        {"<date>2001-01-01T00:00:01Z</date>", date(1)},
        {"<date>2016-02-29T23:59:60Z</date>", date(478483200)},
        {"<data>\n\tAAEC\n\t</data>", NSData::dataWithBytes(std::string_view("\0\1\2", 3))},
        {"<data/>", NSData::data()}}) {
    auto found = readBody(xml);
    EXPECT_TRUE(isEqual(found, value)) << xml << ": " << faultOf(xml);
  }
  EXPECT_TRUE(std::isnan(cast<NSNumber>(readBody("<real>nan</real>"))->doubleValue()));
  EXPECT_TRUE(cast<NSNumber>(readBody("<true/>"))->isBoolean());
  EXPECT_FALSE(cast<NSNumber>(readBody("<integer>1</integer>"))->isBoolean());
}

TEST(XMLPropertyListReader, TheWrappingElementMayBeMissing) {
  EXPECT_TRUE(isEqual(read("<array/>"), NSArray::array()));
  EXPECT_TRUE(isEqual(read("  <string>a</string>"), "a"_ns));
}

TEST(XMLPropertyListReader, ALaterValueOfTheSameKeyWins) {
  auto list = readBody("<dict><key>a</key><true/><key>a</key><string>b</string></dict>");
  EXPECT_TRUE(isEqual(list, NSDictionary::dictionaryWithPairs({{"a"_ns, "b"_ns}})));
}

TEST(XMLPropertyListReader, EveryEncodingThatTheTextTellsIsRead) {
  const std::string body = "<plist version=\"1.0\"><string>A\xC3\xA9</string></plist>";
  const std::u16string units =
      wide("<plist version=\"1.0\"><string>A") + u"é" + wide("</string></plist>");
  const std::u16string head = wide("<?xml version=\"1.0\" encoding=\"UTF-16\"?>");
  auto expected = string("A\xC3\xA9");
  for (const auto& text :
       {body, "\xEF\xBB\xBF" + body, "\xFE\xFF" + bytes(units, false),
        "\xFF\xFE" + bytes(units, true), "\xFF\xFE" + bytes(head + units, true),
        "\xFE\xFF" + bytes(head + units, false), bytes(head + units, true),
        std::string("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><string>A\xE9</string>")}) {
    auto list = read(text);
    EXPECT_TRUE(isEqual(list, expected)) << text.substr(0, 40) << ": " << fault(text);
  }
}

TEST(XMLPropertyListReader, AFaultNamesItsLine) {
  struct Case {
    const char *body, *fault;
  };
  for (auto [body, text] :
       {Case{"<foo/>", "the unknown element “foo” in line 3"},
        {"<dict>\n<string>a</string></dict>", "a value without a key in line 4"},
        {"<dict><key>a</key>\n\n</dict>", "a key without a value in line 5"},
        {"<dict><key>a</key><key>b</key></dict>", "a key without a value in line 3"},
        {"<array><key>a</key></array>", "a key outside a dictionary in line 3"},
        {"<key>a</key>", "a key outside a dictionary in line 3"},
        {"<true/>\n<true/>", "a second value in line 4"},
        {"", "an empty element “plist” in line 4"},
        {"<array>loose</array>", "text where only elements may be: “loose” in line 3"},
        {"<true>x</true>", "text where only elements may be: “x” in line 3"},
        {"<string><b/></string>", "the unknown element “b” in line 3"},
        {"<string><true/></string>", "an element inside a simple value in line 3"},
        {"<array><plist/></array>", "an element “plist” inside another element in line 3"},
        {"<x:string xmlns:x='u'>a</x:string>", "the unknown element “x:string” in line 3"},
        {"<string>&foo;</string>", "Entity 'foo' not defined in line 3"}})
    EXPECT_EQ(faultOf(body), "The property list couldn’t be read: " + std::string(text) + ".");
}

TEST(XMLPropertyListReader, AValueThatIsNoneOfItsKindIsRefused) {
  for (auto body : {"<integer/>",
                    "<integer>1.5</integer>",
                    "<integer>-</integer>",
                    "<integer>--1</integer>",
                    "<integer>+-1</integer>",
                    "<integer>0x</integer>",
                    "<integer>1 2</integer>",
                    "<integer>18446744073709551616</integer>",
                    "<integer>-9223372036854775809</integer>",
                    "<real/>",
                    "<real>1,5</real>",
                    "<real>0x1p3</real>",
                    "<real>+-1</real>",
                    "<real>e</real>",
                    "<real>1e999</real>",
                    "<real>infinite</real>",
                    "<real>nan(1)</real>",
                    "<date/>",
                    "<date>2001-01-01</date>",
                    "<date>2001-13-01T00:00:00Z</date>",
                    "<date>2001-02-29T00:00:00Z</date>",
                    "<date>2001-01-01T24:00:00Z</date>",
                    "<date>2001-01-01T00:00:00+01</date>",
                    "<date>201-01-01T00:00:00Z</date>",
                    "<date>20010-01-01T00:00:00Z</date>",
                    "<data>A</data>",
                    "<data>!!!!</data>"})
    EXPECT_NE(faultOf(body).find("a value that is none of its kind"), std::string::npos) << body;
}

TEST(XMLPropertyListReader, WhatIsNotWellFormedIsRefused) {
  for (std::string_view text :
       {std::string_view(""),
        std::string_view(" "),
        std::string_view("plain text"),
        std::string_view("{ a = b; }"),
        std::string_view("<"),
        std::string_view("<plist"),
        std::string_view("<plist>"),
        std::string_view("<string>a"),
        std::string_view("<string>a</array>"),
        std::string_view("<true/>x"),
        std::string_view("<true/><true/>"),
        std::string_view("<string>\x01</string>"),
        std::string_view("<string>a\0b</string>", 20),
        std::string_view("<string>\xC3(</string>"),
        std::string_view("<string>\xED\xA0\x80</string>"),
        std::string_view("<string>&#xD800;"),
        std::string_view("<string>&#1;</string>"),
        std::string_view("\xFF\xFE<"),
        std::string_view("<?xml version=\"1.0\" encoding=\"no-such\"?><true/>"),
        std::string_view("\0\0\0\0", 4)})
    EXPECT_NE(fault(text), "") << text;
}

TEST(XMLPropertyListReader, NothingIsPrintedOfAFault) {
  testing::internal::CaptureStderr();
  fault("<?xml version=\"1.0\" encoding=\"UTF-16\"?><true/>");
  fault("<?xml version=\"1.0\" encoding=\"Shift_JIS\"?><string>\x81\xFF\xFF</string>");
  fault("\xFF\xFE<\0\0\xD8<\0>\0");
  fault("<plist><a:b>&c;</plist>");
  fault("<!DOCTYPE plist SYSTEM 'file:///nowhere'><plist>&c;</plist>");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(XMLPropertyListReader, DeclarationsThatMultiplyOrFetchAreRefused) {
  for (auto subset :
       {"<!ENTITY a 'b'>", "<!ENTITY a SYSTEM 'file:///etc/passwd'>",
        "<!ENTITY % a SYSTEM 'file:///etc/passwd'> %a;", "<!ATTLIST plist a CDATA 'b'>",
        "<!ATTLIST plist a (b|c) 'b'>", "<!ENTITY a '&#60;'>"}) {
    const std::string text =
        "<!DOCTYPE plist [" + std::string(subset) + "]><plist><string>x</string></plist>";
    EXPECT_EQ(fault(text),
              "The property list couldn’t be read: a declaration of its own in line 1.")
        << text;
  }
  // The document type itself is never fetched.
  EXPECT_TRUE(read("<!DOCTYPE plist SYSTEM 'file:///etc/passwd'><plist><true/></plist>"));
}

TEST(XMLPropertyListReader, LevelsBeyondFiveHundredAndTwelveAreRefused) {
  auto text = [](std::size_t levels) {
    std::string xml;
    for (std::size_t i = 0; i < levels; ++i) xml += "<array>";
    for (std::size_t i = 0; i < levels; ++i) xml += "</array>";
    return plist(xml);
  };
  EXPECT_EQ(fault(text(512)), "");
  for (std::size_t levels : {513u, 100000u})
    EXPECT_EQ(fault(text(levels)),
              "The property list couldn’t be read: more than 512 levels of containers in line 3.");
}

constexpr char kTooLong[] = "a tag, a comment or a CDATA section is too long in line";

TEST(XMLPropertyListReader, ATagWithVeryManyAttributesIsRefusedBeforeItIsParsed) {
  std::string text = "<plist ";
  for (int i = 0; i < 500000; ++i) text += "a" + std::to_string(i) + "='>' ";
  text += "><true/></plist>";
  EXPECT_NE(fault(text).find(kTooLong), std::string::npos);
}

TEST(XMLPropertyListReader, LongTextIsRead) {
  for (char letter : {'x', '>', '\n'}) {
    const std::string content(12'000'000, letter);  // more than the parser's limit for one piece
    auto list = readBody("<string>" + content + "</string>");
    ASSERT_TRUE(cast<NSString>(list));
    EXPECT_EQ(cast<NSString>(list)->length(), content.size());
  }
}

TEST(XMLPropertyListReader, SectionsHaveALimitThatKeepsThemQuick) {
  for (char letter : {'x', '>', ']', '-'}) {
    struct Case {
      const char *before, *after;
    };
    for (auto [before, after] : {Case{"<string><![CDATA[", " ]]></string>"},
                                 {"<string><!-- ", " --></string>"},
                                 {"<string><?x ", " ?></string>"}}) {
      if (std::string_view(before).ends_with("-- ") && letter == '-') continue;
      EXPECT_EQ(faultOf(before + std::string(200'000, letter) + after), "") << before << letter;
      EXPECT_NE(faultOf(before + std::string(20'000'000, letter) + after), "") << before << letter;
    }
  }
}

TEST(XMLPropertyListReader, ManyThreadsReadAtOnce) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([] {
      for (std::uint32_t seed = 0; seed < 20; ++seed) {
        auto list = RandomList(seed).list();
        EXPECT_TRUE(isEqual(read(written(list, kXML)), list));
        EXPECT_NE(fault("<plist><a:b>&c;</plist>"), "");
      }
    });
  for (auto& thread : threads) thread.join();
}

}  // namespace
}  // namespace kbx
