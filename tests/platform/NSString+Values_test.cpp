#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/objects/NSString.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

/// The same text with a unit behind it that makes the string keep UTF-16; no number has it.
Ref<NSString> widened(const char* utf8) { return string(std::string(utf8) + "\u00E9"); }

TEST(NSStringValues, LeadingIntegersAreReadAndClamped) {
  struct Case {
    const char* text;
    std::int64_t value;
    std::int32_t narrow;
  };
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
  for (auto [digits, value, narrow] : {Case{"", 0, 0},
                                       {"12", 12, 12},
                                       {" \t\r\n12", 12, 12},
                                       {"+12", 12, 12},
                                       {"-12", -12, -12},
                                       {"- 12", 0, 0},
                                       {"--12", 0, 0},
                                       {"+-12", 0, 0},
                                       {"12ab", 12, 12},
                                       {"ab12", 0, 0},
                                       {"0012", 12, 12},
                                       {"0x12", 0, 0},
                                       {"1.9", 1, 1},
                                       {"2147483647", 2147483647, 2147483647},
                                       {"2147483648", 2147483648, 2147483647},
                                       {"-2147483648", -2147483648, INT32_MIN},
                                       {"-2147483649", -2147483649, INT32_MIN},
                                       {"9223372036854775807", kMost, INT32_MAX},
                                       {"9223372036854775808", kMost, INT32_MAX},
                                       {"-9223372036854775807", -kMost, INT32_MIN},
                                       {"-9223372036854775808", kLeast, INT32_MIN},
                                       {"-9223372036854775809", kLeast, INT32_MIN},
                                       {"99999999999999999999999", kMost, INT32_MAX},
                                       {"-99999999999999999999999", kLeast, INT32_MIN}}) {
    SCOPED_TRACE(digits);
    EXPECT_EQ(string(digits)->integerValue(), value);
    EXPECT_EQ(string(digits)->intValue(), narrow);
    EXPECT_EQ(widened(digits)->integerValue(), value);
    EXPECT_EQ(widened(digits)->intValue(), narrow);
  }
}

TEST(NSStringValues, DigitsOfOtherScriptsAreNone) {
  EXPECT_EQ("\u0661\u0662"_ns->integerValue(), 0);
  EXPECT_EQ("\uFF11"_ns->integerValue(), 0);
  EXPECT_EQ("\u0131"_ns->integerValue(), 0);
  EXPECT_EQ("\u0661"_ns->doubleValue(), 0);
}

TEST(NSStringValues, TruthIsToldByTheFirstLetterOrDigit) {
  struct Case {
    const char* text;
    bool value;
  };
  for (auto [word, value] :
       {Case{"", false}, {"YES", true},  {"yes", true},   {"Yonder", true}, {"true", true},
        {"T", true},     {"1", true},    {"9x", true},    {"NO", false},    {"false", false},
        {"0", false},    {"on", false},  {"  YES", true}, {"\n1", true},    {"01", false},
        {"000", false},  {"+1", false},  {"-1", false},   {"-0", false},    {"-Y", false},
        {"+-1", false},  {"0.5", false}, {"00Y", false}}) {
    SCOPED_TRACE(word);
    EXPECT_EQ(string(word)->boolValue(), value);
    EXPECT_EQ(widened(word)->boolValue(), value);
  }
  EXPECT_FALSE("\u0159"_ns->boolValue()) << "no letter of which only a part is Y";
}

TEST(NSStringValues, LeadingDecimalNumbersAreRead) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  struct Case {
    const char* text;
    double value;
  };
  for (auto [number, value] : {Case{"", 0},
                               {"1.5", 1.5},
                               {"  -1.5x", -1.5},
                               {"+2", 2},
                               {"+-2", 0},
                               {"--2", 0},
                               {"-", 0},
                               {".5", 0.5},
                               {"5.", 5},
                               {".", 0},
                               {"1,5", 1},
                               {"1e3", 1000},
                               {"1E-3", 0.001},
                               {"1e+3", 1000},
                               {"1e", 1},
                               {"1e+", 1},
                               {"1-2", 1},
                               {"e3", 0},
                               {"0x10", 0},
                               {"inf", 0},
                               {"nan", 0},
                               {"1.7976931348623157e308", 1.7976931348623157e308},
                               {"1e309", kInfinity},
                               {"-1e309", -kInfinity},
                               {"1e99999999999999999999", kInfinity},
                               {"5e-324", 5e-324},
                               {"1e-400", 0},
                               {"0.1", 0.1}}) {
    SCOPED_TRACE(number);
    EXPECT_EQ(string(number)->doubleValue(), value);
    EXPECT_EQ(widened(number)->doubleValue(), value);
  }
  EXPECT_FALSE(std::signbit("-"_ns->doubleValue()));
}

TEST(NSStringValues, ANumberMayBeAsLongAsItLikes) {
  std::string zeros(1000000, '0'), nines(1000000, '9');
  EXPECT_EQ(string(zeros.append("7"))->integerValue(), 7);
  EXPECT_EQ(string(nines)->integerValue(), INT64_MAX);
  EXPECT_EQ(string(nines)->doubleValue(), std::numeric_limits<double>::infinity());
  EXPECT_EQ(string(zeros.insert(0, "."))->doubleValue(), 0);
}

}  // namespace
}  // namespace kbx
