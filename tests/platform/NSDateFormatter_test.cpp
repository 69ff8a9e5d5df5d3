#include "platform/text/NSDateFormatter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <limits>
#include <string>

#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr double kMoment = 1714568523.456;  // 2024-05-01 13:02:03.456 UTC

Ref<NSDate> date(double secondsSince1970) {
  return NSDate::dateWithTimeIntervalSince1970(secondsSince1970);
}

Ref<NSDateFormatter> formatter(NSString* format, const char* timeZone = "UTC") {
  return NSDateFormatter::initWithDateFormat(format, "en_US_POSIX", timeZone);
}

TEST(NSDateFormatter, APatternIsFilledInToTheMillisecond) {
  struct Case {
    double seconds;
    const char* text;
  };
  for (const auto& [seconds, expected] : {Case{kMoment, "2024-05-01 13:02:03.456"},
                                          {0, "1970-01-01 00:00:00.000"},
                                          {-0.001, "1969-12-31 23:59:59.999"},
                                          {951782400.5, "2000-02-29 00:00:00.500"},
                                          {4102444799.999, "2099-12-31 23:59:59.999"}})
    EXPECT_EQ(text(formatter("yyyy-MM-dd HH:mm:ss.SSS"_ns)->stringFromDate(date(seconds))),
              expected);
}

TEST(NSDateFormatter, EveryMillisecondOfASecondIsTold) {
  auto milliseconds = formatter("SSS"_ns);
  for (int i = 0; i < 1000; ++i) {
    char expected[8];
    std::snprintf(expected, sizeof expected, "%03d", i);
    EXPECT_EQ(text(milliseconds->stringFromDate(date(1714568523 + i / 1000.0))), expected);
  }
}

TEST(NSDateFormatter, TheTimeZoneIsTheOneAskedFor) {
  EXPECT_EQ(text(formatter("HH:mm"_ns, "Asia/Kolkata")->stringFromDate(date(kMoment))), "18:32");
  EXPECT_EQ(text(formatter("HH:mm"_ns, "America/New_York")->stringFromDate(date(kMoment))),
            "09:02");
}

TEST(NSDateFormatter, TheTimeZoneOfTheSystemIsTheDefault) {
  const std::time_t moment = 1714568523;
  tm parts{};
  localtime_r(&moment, &parts);
  char expected[32];
  std::strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S", &parts);
  auto inDefaultZone = NSDateFormatter::initWithDateFormat("yyyy-MM-dd HH:mm:ss"_ns, "en_US");
  EXPECT_EQ(text(inDefaultZone->stringFromDate(date(1714568523))), expected);
}

TEST(NSDateFormatter, TheLocaleChoosesNamesDigitsAndCalendar) {
  auto inLocale = [](NSString* format, const char* locale) {
    return text(
        NSDateFormatter::initWithDateFormat(format, locale, "UTC")->stringFromDate(date(kMoment)));
  };
  EXPECT_EQ(inLocale("MMMM"_ns, "de_DE"), "Mai");
  EXPECT_EQ(inLocale("yyyy"_ns, "ar_EG@numbers=arab"), "٢٠٢٤");
  EXPECT_EQ(inLocale("yyyy"_ns, "th_TH@calendar=buddhist"), "2567");
}

TEST(NSDateFormatter, ALongTextIsWhole) {
  const std::string word(500, 'x');
  auto pattern = stringWithFormat("'%s'"_ns, word);
  EXPECT_EQ(text(formatter(pattern)->stringFromDate(date(kMoment))), word);
}

TEST(NSDateFormatter, WhatHasNoDateHasNoText) {
  using Limits = std::numeric_limits<double>;
  auto years = formatter("yyyy"_ns);
  EXPECT_FALSE(years->stringFromDate(nullptr));
  for (double seconds :
       {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), 1e300, -1e15})
    EXPECT_FALSE(years->stringFromDate(date(seconds))) << seconds;
}

TEST(NSDateFormatter, AnAbsentPatternGivesAnEmptyText) {
  EXPECT_EQ(text(formatter(nullptr)->stringFromDate(date(kMoment))), "");
}

}  // namespace
}  // namespace kbx
