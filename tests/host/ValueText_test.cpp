#include "host/defaults/ValueText.h"

#include <algorithm>

#include "host/defaults/ValueParser.h"
#include "tests/support/Nesting.h"
#include "tests/support/PropertyLists.h"

namespace kbx {
namespace {

std::string shown(NSObject* value) {
  StringOutput output;
  writeValueText(output, value);
  return output.text();
}

TEST(ValueText, AStringAloneIsBareWhereNothingElseIsMeant) {
  struct Case {
    const char *text, *shown;
  };
  for (const auto& [text, expected] : {Case{"Importer", "Importer"},
                                       {"two words", "two words"},
                                       {" a \\ ", " a \\ "},
                                       {"100% \"quoted\"", "100% \"quoted\""},
                                       {"é😀", "é😀"},
                                       {"007", "007"},
                                       {"", "\"\""},
                                       {"42", "\"42\""},
                                       {"true", "\"true\""},
                                       {"2001-01-01T00:00:00Z", "\"2001-01-01T00:00:00Z\""},
                                       {"-x", "\"-x\""},
                                       {"{a}", "\"{a}\""},
                                       {"(", "\"(\""},
                                       {"<true/>", "\"<true/>\""},
                                       {"\"a\"", "\"\\\"a\\\"\""},
                                       {"a\nb", "\"a\\nb\""},
                                       {"\x1B[31m\u202E", "\"\\u001b[31m\\u202e\""}}) {
    EXPECT_EQ(shown(string(text)), expected);
  }
  EXPECT_EQ(shown(NSString::stringWithUTF16(u"a\xD800")), "\"a\\ud800\"");
}

TEST(ValueText, ListsAreIndentedAndSorted) {
  Ref<NSArray> list = NSArray::arrayWithObjects({"a"_ns, "b c"_ns, "1"_ns, "-d"_ns, ""_ns});
  auto one = NSNumber::numberWithInteger(1);
  auto inner = NSDictionary::dictionaryWithPairs({{"x"_ns, list}});
  auto empty = NSArray::array();
  auto none = NSDictionary::dictionary();
  auto bytes = data("\x0F\xBD");
  auto outer = NSDictionary::dictionaryWithPairs(
      {{"z"_ns, inner}, {"a b"_ns, one}, {"7"_ns, bytes}, {"list"_ns, empty}, {"dict"_ns, none}});
  EXPECT_EQ(shown(outer),
            "{\n"
            "    \"7\" = <0fbd>;\n"
            "    \"a b\" = 1;\n"
            "    dict = {};\n"
            "    list = ();\n"
            "    z = {\n"
            "        x = (\n"
            "            a,\n"
            "            \"b c\",\n"
            "            \"1\",\n"
            "            \"-d\",\n"
            "            \"\"\n"
            "        );\n"
            "    };\n"
            "}");
}

TEST(ValueText, EveryValueReadsBackTheSame) {
  for (std::uint32_t seed = 0; seed < 300; ++seed) {
    SCOPED_TRACE(seed);
    auto list = test::RandomList(seed).list();
    const std::string text = shown(list);
    auto again = valueOfText(string(text));
    EXPECT_EQ(test::written(again, test::kBinary), test::written(list, test::kBinary)) << text;
    EXPECT_EQ(shown(again), text);
  }
}

TEST(ValueText, TheDeepestListReadsBackTheSame) {
  auto list = test::nested(512);
  EXPECT_TRUE(isEqual(valueOfText(string(shown(list))), list));
}

TEST(ValueText, EveryControlCharacterIsEscapedAndReadsBackTheSame) {
  for (char16_t unit = 0; unit < 0x300; ++unit) {
    auto text = NSString::stringWithUTF16(std::u16string{unit, u'x'});
    const std::string written = shown(text);
    EXPECT_TRUE(std::ranges::none_of(written, [](char byte) { return byte >= 0 && byte < ' '; }));
    EXPECT_TRUE(isEqual(valueOfText(string(written)), text)) << written;
  }
}

TEST(ValueText, WhatHoldsTheSameAgainAndAgainIsBounded) {
  auto list = NSMutableArray::array();
  list->addObject(list);
  EXPECT_NE(shown(list).find("..."), std::string::npos) << "nor does it take the stack";
  list->addObject(list);
  EXPECT_LT(shown(list).size(), std::size_t{1} << 25);
  list->removeAllObjects();
  const std::string text = shown(doubledArrays(100, "leaf"_ns));
  EXPECT_LT(text.size(), std::size_t{1} << 25);
  EXPECT_NE(text.find("leaf"), std::string::npos);
}

TEST(ValueText, ADeepPropertyListIsWrittenWhole) {
  const std::string text = shown(nestedArrays(512));
  EXPECT_EQ(text.find("..."), std::string::npos);
  EXPECT_TRUE(isEqual(valueOfText(string(text)), nestedArrays(512)));
}

}  // namespace
}  // namespace kbx
