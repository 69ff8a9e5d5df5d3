#include "host/results/AttributeText.h"

#include <gtest/gtest.h>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Nesting.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

std::string shown(std::initializer_list<NSDictionary::Pair> pairs) {
  StringOutput output;
  writeAttributeText(output, NSDictionary::dictionaryWithPairs(pairs));
  return output.text();
}

TEST(AttributeText, NamesAreSortedAndTheirEqualsSignsAligned) {
  EXPECT_EQ(shown({{"kMDItemTextContent"_ns, "b"_ns}, {"kMDItemA"_ns, "a"_ns}}),
            "kMDItemA           = \"a\"\n"
            "kMDItemTextContent = \"b\"\n");
}

TEST(AttributeText, NoAttributesAreNoText) { EXPECT_EQ(shown({}), ""); }

TEST(AttributeText, EachKindOfValueHasItsForm) {
  struct Case {
    Ref<NSObject> value;
    const char* text;
  };
  for (const auto& [value, expected] :
       {Case{string(""), "\"\""},
        {string("Grüße"), "\"Grüße\""},
        {NSNumber::numberWithInteger(-12), "-12"},
        {NSNumber::numberWithUnsignedInteger(UINT64_MAX), "18446744073709551615"},
        {NSNumber::numberWithDouble(0.1), "0.1"},
        {NSNumber::numberWithBool(true), "1"},
        {NSNumber::numberWithBool(false), "0"},
        {NSDate::dateWithTimeIntervalSince1970(1795233360), "2026-11-21 03:56:00 +0000"},
        {data("abc"), "{length = 3, bytes = 0x616263}"},
        {Ref<NSObject>(NSNull::null()), "<null>"},
        {NSArray::array(), "(\n)"}})
    EXPECT_EQ(shown({{"n"_ns, value}}), std::string("n = ") + expected + "\n");
}

/// An object of an importer that breaks the rule about descriptions.
class Undescribed final : public NSObject {
 public:
  static Ref<NSObject> make() { return Ref<NSObject>::adopt(new Undescribed); }
  Ref<NSString> description() const override { return nullptr; }
};

TEST(AttributeText, AnAbsentDescriptionIsTextAllTheSame) {
  auto odd = Undescribed::make();
  EXPECT_EQ(shown({{odd, odd}}), "(null) = (null)\n");
}

TEST(AttributeText, FurtherLinesBeginInTheColumnOfTheText) {
  EXPECT_EQ(shown({{"name"_ns, "one\ntwo\n"_ns}}),
            "name = \"one\n"
            "        two\n"
            "        \"\n");
}

TEST(AttributeText, ALineBreakOfTwoCharactersIsOne) {
  EXPECT_EQ(shown({{"n"_ns, "a\r\nb\rc\r\r\nd\r"_ns}}),
            "n = \"a\n"
            "     b\\rc\\r\n"
            "     d\\r\"\n");
  EXPECT_EQ(shown({{"n"_ns, "ä\r\nb\r"_ns}}),
            "n = \"ä\n"
            "     b\\r\"\n");
}

TEST(AttributeText, ArraysHaveOneElementALine) {
  auto list = NSArray::arrayWithObjects({"a"_ns, NSNumber::numberWithInteger(2), "b\nc"_ns});
  EXPECT_EQ(shown({{"name"_ns, list}}),
            "name = (\n"
            "    \"a\",\n"
            "    2,\n"
            "    \"b\n"
            "     c\"\n"
            ")\n");
}

TEST(AttributeText, InnerCollectionsAreIndentedFurther) {
  auto inner = NSDictionary::dictionaryWithPairs({{"y"_ns, "1\n2"_ns}, {"x"_ns, "3"_ns}});
  auto list = NSArray::arrayWithObjects({NSArray::arrayWithObjects({"a"_ns}), inner});
  EXPECT_EQ(shown({{"n"_ns, list}}),
            "n = (\n"
            "    (\n"
            "        \"a\"\n"
            "    ),\n"
            "    {\n"
            "        x = \"3\";\n"
            "        y = \"1\n"
            "             2\";\n"
            "    }\n"
            ")\n");
}

TEST(AttributeText, QuotesAndBackslashesAreEscaped) {
  EXPECT_EQ(shown({{"n"_ns, "a\"b\\c"_ns}}), "n = \"a\\\"b\\\\c\"\n");
}

TEST(AttributeText, NoValueAndNoNameCanDriveTheTerminal) {
  EXPECT_EQ(shown({{"n\n\x1B"_ns, "\x1B]0;x\x07\r\t\n\u202E\u009B"_ns}}),
            "n\\n\\u001b = \"\\u001b]0;x\\u0007\\r\\t\n"
            "             \\u202e\\u009b\"\n");
}

TEST(AttributeText, EndlessNestingEnds) {
  auto list = NSMutableArray::array();
  list->addObject(list);
  const std::string text = shown({{"n"_ns, list}});
  EXPECT_NE(text.find("..."), std::string::npos);
  list->removeAllObjects();
}

TEST(AttributeText, WhatHoldsTheSameAgainAndAgainIsBounded) {
  auto list = NSMutableArray::array();
  list->addObject(list);
  list->addObject(list);
  EXPECT_LT(shown({{"n"_ns, list}}).size(), std::size_t{1} << 25);
  list->removeAllObjects();
  const std::string text = shown({{"n"_ns, doubledArrays(60, "leaf"_ns)}});
  EXPECT_LT(text.size(), std::size_t{1} << 25);
  EXPECT_NE(text.find("leaf"), std::string::npos);
  EXPECT_NE(text.find("..."), std::string::npos);
}

}  // namespace
}  // namespace kbx
