#include "platform/propertylists/XMLPropertyListReader.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/propertylists/PlainXMLPropertyList.h"
#include "tests/support/PropertyLists.h"

namespace kbx {
namespace {

using namespace test;

constexpr char kHead[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";

/// The same text for the reader of all XML: a comment at the end is nothing that is plain.
Ref<NSObject> readInFull(const std::string& text) {
  return propertyListFromXML(text + "<!-- -->", false).list;
}

TEST(PlainXMLPropertyList, WhatIsWrittenIsPlain) {
  for (std::uint32_t seed = 0; seed < 200; ++seed) {
    auto list = RandomList(seed).list();
    for (bool isMutable : {false, true}) {
      auto again = propertyListFromPlainXML(written(list, kXML), isMutable);
      EXPECT_TRUE(isEqual(again, list)) << seed;
      EXPECT_EQ(cast<NSMutableArray>(again) || cast<NSMutableDictionary>(again),
                isMutable && (cast<NSArray>(list) || cast<NSDictionary>(list)));
    }
  }
}

TEST(PlainXMLPropertyList, WhatIsPlainMeansTheSameAsInAllXML) {
  for (const std::string& text : std::initializer_list<std::string>{
           "<true/>", " \n\t<array/>\n ", "<plist version=\"1.0\"><string>a</string></plist>",
           kHead + std::string("<plist version=\"1.0\">\n<string>a]]&gt;b]]</string>\n"
                               "</plist>\n"),
           "<string>&lt;&gt;&amp;&quot;&apos;&#13;&#x1F600;&#233;&#x9;&#x10FFFF;&#xD7FF;</string>",
           "<string>\x7F\u0080\u0085\u2028\uFFFD😀</string>",
           "<dict><key>a&amp;b</key><false></false><key></key><data> AA==\n</data></dict>",
           "<array>&#32;<real>1</real>&#10;</array>",
           "<dict><key>a</key><true/><key>a</key><integer>0x1F</integer></dict>"}) {
    auto list = propertyListFromPlainXML(text, false);
    ASSERT_TRUE(list) << text;
    EXPECT_TRUE(isEqual(list, readInFull(text))) << text;
  }
}

TEST(PlainXMLPropertyList, EverythingElseIsLeftToTheReaderOfAllXML) {
  for (const std::string& text :
       std::initializer_list<std::string>{"",
                                          " ",
                                          "a",
                                          "<",
                                          "<true/",
                                          "<true />",
                                          "<true></true >",
                                          "<plist version='1.0'><true/></plist>",
                                          "<plist version=\"1.0\"><true/></plist><!-- -->",
                                          "<?xml version=\"1.0\"?><true/>",
                                          " <?xml version=\"1.0\" encoding=\"UTF-8\"?><true/>",
                                          "<!DOCTYPE plist><true/>",
                                          "\xEF\xBB\xBF<true/>",
                                          "<string>a\r\nb</string>",
                                          "<string><![CDATA[a]]></string>",
                                          "<string>a]]>b</string>",
                                          "<string>a\x01</string>",
                                          "<string>\xC3</string>",
                                          "<string>\xED\xA0\x80</string>",
                                          "<string>\xEF\xBF\xBE</string>",
                                          "<string>\xEF\xBF\xBF</string>",
                                          "<string>\xC3&amp;\xA9</string>",
                                          "<dict><key>\xFF</key><true/></dict>",
                                          "<dict><key>\xFF</key></dict>",
                                          "<dict><key>a</key></dict>",
                                          "<string>&foo;</string>",
                                          "<string>&</string>",
                                          "<string>&amp</string>",
                                          "<string>&#0;</string>",
                                          "<string>&#x;</string>",
                                          "<string>&#;</string>",
                                          "<string>&#-1;</string>",
                                          "<string>&#X41;</string>",
                                          "<string>&#xD800;</string>",
                                          "<string>&#xFFFE;</string>",
                                          "<string>&#x110000;</string>",
                                          "<string>&#99999999999;</string>",
                                          "<string>a</key>",
                                          "<string>a",
                                          "<string>a<b/></string>",
                                          "</string>",
                                          "<true/></true>",
                                          "<true/><true/>",
                                          "<true/><plist version=\"1.0\"></plist>",
                                          "<plist version=\"1.0\"></plist>",
                                          "<plist version=\"1.0\"/>",
                                          "<true/>&#32;",
                                          "&#32;<true/>",
                                          "<true/>x",
                                          "<x/>",
                                          "<array>x</array>",
                                          "<integer>1.5</integer>",
                                          std::string("<string>a\0b</string>", 20)})
    EXPECT_FALSE(propertyListFromPlainXML(text, false)) << text;
}

TEST(PlainXMLPropertyList, EveryChangeOfAByteReadsAsInAllXML) {
  const std::string text =
      kHead + std::string(
                  "<plist version=\"1.0\">\n<dict>\n\t<key>é&amp;</key>\n\t<array>\n"
                  "\t\t<string>a&#13;]]</string>\n\t\t<integer>12</integer>\n"
                  "\t\t<data>AAEC</data>\n\t\t<true/>\n\t</array>\n</dict>\n</plist>\n");
  for (std::size_t at = 0; at < text.size(); ++at)
    for (char letter : {'<', '>', '/', '&', ';', ']', ' ', '\t', '\0', '\x80', '\xBF', 'x', '1'}) {
      std::string changed = text;
      changed[at] = letter;
      auto list = propertyListFromPlainXML(changed, false);
      EXPECT_TRUE(!list || isEqual(list, readInFull(changed))) << changed;
    }
}

TEST(PlainXMLPropertyList, ManyReferencesTakeNoMoreThanOneWalk) {
  // A look for the next tag at each of them would take minutes.
  std::string text = "<string>";
  for (int i = 0; i < 1'000'000; ++i) text += "&lt;a";
  auto list = propertyListFromPlainXML(text + "</string>", false);
  ASSERT_TRUE(list);
  EXPECT_EQ(cast<NSString>(list)->length(), 2'000'000u);
}

}  // namespace
}  // namespace kbx
