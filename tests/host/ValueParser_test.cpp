#include "host/defaults/ValueParser.h"

#include "tests/support/PropertyLists.h"

namespace kbx {
namespace {

Ref<NSObject> value(std::string_view utf8) { return valueOfText(string(utf8)); }

/// What is wrong with the text; "" when nothing is.
std::string faultOf(std::string_view utf8) {
  try {
    value(utf8);
    return "";
  } catch (const ValueFault& fault) {
    return fault.what();
  }
}

/// The binary form tells booleans, integers, real numbers and texts apart.
void expectSame(NSObject* value, NSObject* expected) {
  EXPECT_EQ(test::written(value, test::kBinary), test::written(expected, test::kBinary));
}

TEST(ValueParser, ATextThatIsNoListIsAWordOrItself) {
  for (const char* text : {"", " ", "Importer", "two words", " a ", "007", "1.10", "a = b;", "é",
                           "a\nb", "x{", "1 2", "true story"}) {
    SCOPED_TRACE(text);
    expectSame(value(text), string(text));
  }
  expectSame(value("true"), NSNumber::numberWithBool(true));
  expectSame(value("42"), NSNumber::numberWithInteger(42));
  expectSame(value("1.5"), NSNumber::numberWithDouble(1.5));
  expectSame(value("2001-01-01T00:00:00Z"), NSDate::dateWithTimeIntervalSinceReferenceDate(0));
}

TEST(ValueParser, AQuotedTextIsNothingElse) {
  struct Case {
    const char* text;
    std::u16string value;
  };
  for (const auto& [text, expected] : {Case{"\"\"", u""},
                                       {"\"42\"", u"42"},
                                       {" \"a b\" ", u"a b"},
                                       {R"("\"\\\n\r\t")", u"\"\\\n\r\t"},
                                       {R"("\u0041\u00e9\uD83D\uDE00")", u"Aé😀"},
                                       {"\"é😀\"", u"é😀"},
                                       {R"("\u001b")", u"\x1B"},
                                       {"\"{(<>)}\"", u"{(<>)}"}}) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(isEqual(value(text), NSString::stringWithUTF16(expected)));
  }
}

TEST(ValueParser, ListsHoldListsAndWords) {
  expectSame(value("()"), NSArray::array());
  expectSame(value(" ( ) "), NSArray::array());
  expectSame(value("{}"), NSDictionary::dictionary());
  auto one = NSNumber::numberWithInteger(1);
  for (const char* text : {"(a, 1, \"1\")", "(a,1,\"1\",)", "(\n  a,\n  1,\n  \"1\"\n)"}) {
    SCOPED_TRACE(text);
    expectSame(value(text), NSArray::arrayWithObjects({"a"_ns, one.get(), "1"_ns}));
  }
  Ref<NSArray> list = NSArray::arrayWithObjects({"x"_ns});
  auto expected = NSDictionary::dictionaryWithPairs({{"k"_ns, one}, {"a b"_ns, list}});
  for (const char* text : {"{k = 1; \"a b\" = (x);}", "{k=1;\"a b\"=(x)}"}) {
    SCOPED_TRACE(text);
    expectSame(value(text), expected);
  }
  expectSame(value("{1 = 1;}"), NSDictionary::dictionaryWithPairs({{"1"_ns, one}}));
  expectSame(value("{a = 2; a = 1;}"), NSDictionary::dictionaryWithPairs({{"a"_ns, one}}));
}

TEST(ValueParser, DataIsHexadecimalDigits) {
  expectSame(value("<>"), NSData::data());
  expectSame(value("<0fbd77 1C>"), data("\x0F\xBD\x77\x1C"));
  expectSame(value("< 0 f >"), data("\x0F"));
  expectSame(value("<dada>"), data("\xDA\xDA"));
  expectSame(value("(<00>)"), NSArray::arrayWithObjects({data(std::string(1, '\0')).get()}));
}

TEST(ValueParser, XMLIsReadAsAPropertyList) {
  expectSame(value("<true/>"), NSNumber::numberWithBool(true));
  expectSame(value("<integer>5</integer>"), NSNumber::numberWithInteger(5));
  expectSame(value("<data>AAE=</data>"), data(std::string("\0\1", 2)));
  expectSame(value("<dict/>"), NSDictionary::dictionary());
  expectSame(value("<plist version=\"1.0\"><array><string>é</string></array></plist>"),
             NSArray::arrayWithObjects({string("é").get()}));
}

TEST(ValueParser, WhatBeginsLikeAListAndIsNoneIsMalformed) {
  struct Case {
    const char *text, *fault;
  };
  for (const auto& [text, fault] :
       {Case{"(", "the list has no end at character 2"},
        {"(a", "a ) is missing at character 3"},
        {"(a b)", "a ) is missing at character 4"},
        {"(,)", "a string that needs quotes at character 2"},
        {"(é)", "a string that needs quotes at character 2"},
        {"{a}", "a = is missing at character 3"},
        {"{a = 1", "a } is missing at character 7"},
        {"{(a) = 1;}", "a string that needs quotes at character 2"},
        {"\"a", "a \" is missing at character 3"},
        {"\"a\\", "a \" is missing at character 4"},
        {"\"\\x\"", "an unknown escape at character 4"},
        {"\"\\u12\"", "\\u without four hexadecimal digits at character 6"},
        {"\"a\" b", "something follows the end of the list at character 5"},
        {"{} {}", "something follows the end of the list at character 4"},
        {"<0", "a > is missing at character 3"},
        {"<0f0>", "data with half a byte at character 6"},
        {"(<0g>)", "no hexadecimal digit at character 4"},
        {"(<true/>)", "no hexadecimal digit at character 3"}}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(faultOf(text), fault);
  }
  EXPECT_NE(faultOf("<dict>"), "");
  EXPECT_NE(faultOf("<html>x</html>"), "");
}

TEST(ValueParser, TheDepthIsBounded) {
  const auto nested = [](std::size_t levels) {
    return std::string(levels, '(') + std::string(levels, ')');
  };
  expectSame(value(nested(512)), test::nested(512));
  EXPECT_EQ(faultOf(nested(513)), "more than 512 levels at character 514");
  EXPECT_NE(faultOf(std::string(1000000, '(')), "");
  EXPECT_NE(faultOf(std::string(1000000, '{')), "");
}

TEST(ValueParser, DigitsAreBytes) {
  EXPECT_EQ(text(dataOfDigits("")), "");
  EXPECT_EQ(text(dataOfDigits("41 4a\t4B")), "AJK");
  EXPECT_FALSE(dataOfDigits("4"));
  EXPECT_FALSE(dataOfDigits("4x"));
}

}  // namespace
}  // namespace kbx
