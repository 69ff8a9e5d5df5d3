#include "host/defaults/TypedValue.h"

#include "host/console/Command.h"
#include "tests/support/PropertyLists.h"

namespace kbx {
namespace {

using Words = std::vector<std::string>;

/// In XML, where no two types look the same; what is wrong with the words otherwise.
std::string value(const Words& words) {
  try {
    const std::string xml = test::written(typedValue(words), test::kXML);
    const std::size_t start = xml.find("<plist version=\"1.0\">\n") + 22;
    return xml.substr(start, xml.rfind("\n</plist>") - start);
  } catch (const UsageError& error) {
    return error.what();
  }
}

TEST(TypedValue, ATypeSaysWhatTheWordIs) {
  struct Case {
    Words words;
    const char* value;
  };
  for (const auto& [words, expected] :
       {Case{{"-string", "42"}, "<string>42</string>"},
        {{"-string", ""}, "<string></string>"},
        {{"-string", "-int"}, "<string>-int</string>"},
        {{"-string", "{a"}, "<string>{a</string>"},
        {{"-int", "42"}, "<integer>42</integer>"},
        {{"-int", "-0x10"}, "<integer>-16</integer>"},
        {{"-integer", "18446744073709551615"}, "<integer>18446744073709551615</integer>"},
        {{"-float", "1"}, "<real>1</real>"},
        {{"-real", "-1.5e3"}, "<real>-1500</real>"},
        {{"-bool", "YES"}, "<true/>"},
        {{"-bool", "true"}, "<true/>"},
        {{"-bool", "1"}, "<true/>"},
        {{"-boolean", "No"}, "<false/>"},
        {{"-bool", "FALSE"}, "<false/>"},
        {{"-bool", "0"}, "<false/>"},
        {{"-date", "2026-07-29T05:36:00Z"}, "<date>2026-07-29T05:36:00Z</date>"},
        {{"-date", "2026-07-29 06:36:00 +0100"}, "<date>2026-07-29T05:36:00Z</date>"},
        {{"-data", "41 42"}, "<data>\nQUI=\n</data>"},
        {{"-data", ""}, "<data>\n</data>"},
        {{"-array"}, "<array/>"},
        {{"-array", "a", "1", "-string", "1", "-5"},
         "<array>\n\t<string>a</string>\n\t<integer>1</integer>\n\t<string>1</string>\n"
         "\t<integer>-5</integer>\n</array>"},
        {{"-dict"}, "<dict/>"},
        {{"-dict", "b", "(x)", "a", "-bool", "yes"},
         "<dict>\n\t<key>a</key>\n\t<true/>\n\t<key>b</key>\n\t<array>\n"
         "\t\t<string>x</string>\n\t</array>\n</dict>"}}) {
    SCOPED_TRACE(words[0]);
    EXPECT_EQ(value(words), expected);
  }
}

TEST(TypedValue, AWordWithoutATypeIsReadAsAText) {
  EXPECT_EQ(value({"true"}), "<true/>");
  EXPECT_EQ(value({"-5"}), "<integer>-5</integer>");
  EXPECT_EQ(value({"-1.5"}), "<real>-1.5</real>");
  EXPECT_EQ(value({"YES"}), "<string>YES</string>");
  EXPECT_EQ(value({"{a = (1);}"}),
            "<dict>\n\t<key>a</key>\n\t<array>\n\t\t<integer>1</integer>\n\t</array>\n</dict>");
}

TEST(TypedValue, WrongWordsAreTold) {
  struct Case {
    Words words;
    const char* complaint;
  };
  for (const auto& [words, complaint] :
       {Case{{}, "a VALUE is missing"},
        {{"-int"}, "a VALUE is missing"},
        {{"-int", "x"}, "x is no 64-bit integer"},
        {{"-int", "1.5"}, "1.5 is no 64-bit integer"},
        {{"-int", "18446744073709551616"}, "18446744073709551616 is no 64-bit integer"},
        {{"-int", "1", "2"}, "a word too many: 2"},
        {{"-float", "x"}, "x is no number"},
        {{"-bool", "maybe"}, "maybe is no truth value"},
        {{"-date", "now"}, "now is no date"},
        {{"-data", "abc"}, "abc is no hexadecimal bytes"},
        {{"-string", "\xFF"}, "the VALUE is not UTF-8: \xFF"},
        {{"\xFF"}, "the VALUE is not UTF-8: \xFF"},
        {{"-frob", "x"}, "unknown type -frob"},
        {{"a", "b"}, "a word too many: b"},
        {{"-array", "-array"}, "unknown type -array"},
        {{"-array", "-int"}, "a VALUE is missing"},
        {{"-dict", "a"}, "a VALUE is missing"},
        {{"{a"}, "the VALUE {a is malformed: a = is missing at character 3"}}) {
    EXPECT_EQ(value(words), complaint);
  }
}

TEST(TypedValue, OnlyTypesAreTypes) {
  for (const char* word : {"-string", "-data", "-int", "-integer", "-float", "-real", "-bool",
                           "-boolean", "-date", "-array", "-dict"})
    EXPECT_TRUE(isValueType(word)) << word;
  for (const char* word : {"string", "--int", "-Int", "-5", "-", "", "-g"})
    EXPECT_FALSE(isValueType(word)) << word;
}

}  // namespace
}  // namespace kbx
