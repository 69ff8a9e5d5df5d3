#include "host/defaults/ValueWords.h"

#include <limits>

#include "tests/support/Text.h"

namespace kbx {
namespace {

using Limits = std::numeric_limits<double>;

Ref<NSDate> date(double seconds) { return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds); }

TEST(ValueWords, EveryNumberHasAWordOfItsOwn) {
  struct Case {
    Ref<NSNumber> number;
    const char* word;
  };
  for (const auto& [number, word] :
       {Case{NSNumber::numberWithBool(true), "true"},
        {NSNumber::numberWithBool(false), "false"},
        {NSNumber::numberWithInteger(0), "0"},
        {NSNumber::numberWithInteger(1), "1"},
        {NSNumber::numberWithInteger(std::numeric_limits<std::int64_t>::min()),
         "-9223372036854775808"},
        {NSNumber::numberWithUnsignedInteger(std::numeric_limits<std::uint64_t>::max()),
         "18446744073709551615"},
        {NSNumber::numberWithDouble(1), "1.0"},
        {NSNumber::numberWithDouble(-0.0), "-0.0"},
        {NSNumber::numberWithDouble(0.1), "0.1"},
        {NSNumber::numberWithDouble(1e22), "1e+22"},
        {NSNumber::numberWithDouble(5e-324), "5e-324"},
        {NSNumber::numberWithDouble(Limits::max()), "1.7976931348623157e+308"},
        {NSNumber::numberWithDouble(Limits::infinity()), "inf"},
        {NSNumber::numberWithDouble(-Limits::infinity()), "-inf"},
        {NSNumber::numberWithDouble(Limits::quiet_NaN()), "nan"}}) {
    SCOPED_TRACE(word);
    EXPECT_EQ(wordOfNumber(number), word);
    auto again = valueOfWord(word);
    auto* read = cast<NSNumber>(again);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->isBoolean(), number->isBoolean());
    EXPECT_EQ(read->kind() == NSNumber::Kind::Real, number->kind() == NSNumber::Kind::Real);
    EXPECT_EQ(wordOfNumber(read), word);
  }
}

TEST(ValueWords, EveryDateHasAWordOfItsOwn) {
  struct Case {
    double seconds;
    const char* word;
  };
  for (const auto& [seconds, word] : {Case{0, "2001-01-01T00:00:00Z"},
                                      {806996160, "2026-07-29T05:36:00Z"},
                                      {806996160.25, "2026-07-29T05:36:00.25Z"},
                                      {-1, "2000-12-31T23:59:59Z"},
                                      {1e-9, "@1e-09"},
                                      {1e12, "@1e+12"},
                                      {-1e300, "@-1e+300"},
                                      {Limits::infinity(), "@inf"}}) {
    SCOPED_TRACE(word);
    EXPECT_EQ(wordOfDate(date(seconds)), word);
    auto again = valueOfWord(word);
    auto* read = cast<NSDate>(again);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->timeIntervalSinceReferenceDate(), seconds);
  }
  EXPECT_EQ(wordOfDate(date(Limits::quiet_NaN())), "@nan");
  EXPECT_TRUE(cast<NSDate>(valueOfWord("@nan")));
}

TEST(ValueWords, AWordThatWouldBeWrittenOtherwiseIsAText) {
  for (const char* word : {"",
                           "007",
                           "1.10",
                           "1.",
                           ".5",
                           "+1",
                           "-0",
                           "0x10",
                           "1e22",
                           "1E+22",
                           "1_000",
                           "True",
                           "YES",
                           "no",
                           "Inf",
                           "infinity",
                           "NaN",
                           "18446744073709551616",
                           "-9223372036854775809",
                           "1 ",
                           " 1",
                           "2026-07-29",
                           "2026-07-29T05:36:00",
                           "2026-07-29T05:36:00.250Z",
                           "2026-07-29T05:36:00.Z",
                           "2026-02-30T05:36:00Z",
                           "2026-07-29 05:36:00 +0000",
                           "@1",
                           "@",
                           "@x",
                           "Importer",
                           "-x"}) {
    SCOPED_TRACE(word);
    EXPECT_FALSE(valueOfWord(word));
  }
}

TEST(ValueWords, ADateIsReadInThreeForms) {
  for (const char* text :
       {"2026-07-29T05:36:00Z", "2026-07-29T05:36:00.000Z", "2026-07-29 05:36:00 +0000",
        "2026-07-29 06:36:00 +0100", "2026-07-29 00:06:00 -0530", "@806996160", "@806996160.0"}) {
    SCOPED_TRACE(text);
    auto read = dateOfText(text);
    ASSERT_TRUE(read);
  }
  EXPECT_TRUE(isEqual(dateOfText("2026-07-29 06:36:00 +0100"), dateOfText("2026-07-29T05:36:00Z")));
  EXPECT_TRUE(isEqual(dateOfText("2026-07-29 00:06:00 -0530"), dateOfText("2026-07-29T05:36:00Z")));
  EXPECT_TRUE(isEqual(dateOfText("@806996160"), dateOfText("2026-07-29T05:36:00Z")));
  for (const char* text :
       {"", "now", "2026-07-29", "2026-13-29T05:36:00Z", "2026-07-29T05:36:00",
        "2026-07-29T05:36:00+0100", "2026-07-29 05:36:00", "2026-07-29 05:36:00 +01:0",
        "2026-07-29 05:36:00 +2500", "2026-07-29 05:36:00 0100 ", "2026-07-29T05:36:00.5", "@"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(dateOfText(text));
  }
}

}  // namespace
}  // namespace kbx
