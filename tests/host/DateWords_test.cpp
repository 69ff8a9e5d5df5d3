#include "host/search/DateWords.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/FakeClock.h"
#include "tests/support/FakeLocalTime.h"

namespace kbx {
namespace {

constexpr double kNow = 1715952600;  // 2024-05-17 13:30:00 UTC, a Friday

/// At kNow, two hours ahead of UTC.
class DateWordsTest : public testing::Test {
 protected:
  /// "2024-05-17 00:00", by the wall clock.
  static std::string shown(double seconds) {
    const CivilTime time = LocalTime::current().civilTime(seconds);
    char text[96];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d", static_cast<int>(time.year),
                  time.month, time.day, time.hour, time.minute);
    return text;
  }
  static std::string span(std::string_view word) {
    const auto found = dateSpanOf(word);
    return found ? shown(found->from) + " to " + shown(found->to) : "none";
  }

  FakeClock _clock{kNow};
  FakeLocalTime _zone{3600, true};
  ScopedService<Clock> _installedClock{_clock};
  ScopedService<LocalTime> _installedZone{_zone};
};

TEST_F(DateWordsTest, AWordStandsForWholeDaysOfTheUsersZone) {
  struct Case {
    const char *word, *span;
  };
  for (auto [word, expected] : {Case{"2024", "2024-01-01 00:00 to 2025-01-01 00:00"},
                                {"2024-05", "2024-05-01 00:00 to 2024-06-01 00:00"},
                                {"2024-12", "2024-12-01 00:00 to 2025-01-01 00:00"},
                                {"2024-05-17", "2024-05-17 00:00 to 2024-05-18 00:00"},
                                {"2024-02-29", "2024-02-29 00:00 to 2024-03-01 00:00"},
                                {"today", "2024-05-17 00:00 to 2024-05-18 00:00"},
                                {"TODAY", "2024-05-17 00:00 to 2024-05-18 00:00"},
                                {"yesterday", "2024-05-16 00:00 to 2024-05-17 00:00"},
                                {"thisweek", "2024-05-13 00:00 to 2024-05-20 00:00"},
                                {"lastweek", "2024-05-06 00:00 to 2024-05-13 00:00"},
                                {"thismonth", "2024-05-01 00:00 to 2024-06-01 00:00"},
                                {"lastmonth", "2024-04-01 00:00 to 2024-05-01 00:00"},
                                {"thisyear", "2024-01-01 00:00 to 2025-01-01 00:00"},
                                {"lastyear", "2023-01-01 00:00 to 2024-01-01 00:00"},
                                {"0d", "2024-05-17 00:00 to 2024-05-18 00:00"},
                                {"3d", "2024-05-14 00:00 to 2024-05-15 00:00"},
                                {"2w", "2024-05-03 00:00 to 2024-05-04 00:00"},
                                {"1m", "2024-04-17 00:00 to 2024-04-18 00:00"},
                                {"1y", "2023-05-17 00:00 to 2023-05-18 00:00"},
                                {"6m", "2023-11-17 00:00 to 2023-11-18 00:00"}}) {
    SCOPED_TRACE(word);
    EXPECT_EQ(span(word), expected);
  }
}

TEST_F(DateWordsTest, ADayThatSpringsForwardHas23Hours) {
  const auto before = dateSpanOf("2024-03-31"), change = dateSpanOf("2024-04-01");
  ASSERT_TRUE(before && change);
  EXPECT_EQ(before->to, change->from);
  EXPECT_EQ(before->to - before->from, 24 * 3600);
  EXPECT_EQ(change->to - change->from, 23 * 3600);
}

TEST_F(DateWordsTest, TodayIsTheUsersDayNotThatOfUTC) {
  _clock.seconds = 1715983200 + 3600;  // 2024-05-17 23:00 UTC, the 18th there
  EXPECT_EQ(span("today"), "2024-05-18 00:00 to 2024-05-19 00:00");
}

TEST_F(DateWordsTest, AMonthAgoIsTheLastDayWhereThatMonthIsShorter) {
  _clock.seconds = 1711843200;  // 2024-03-31
  EXPECT_EQ(span("1m"), "2024-02-29 00:00 to 2024-03-01 00:00");
  EXPECT_EQ(span("13m"), "2023-02-28 00:00 to 2023-03-01 00:00");
}

TEST_F(DateWordsTest, AWeekBeginsOnMonday) {
  _clock.seconds = 1716120000;  // Sunday 2024-05-19
  EXPECT_EQ(span("thisweek"), "2024-05-13 00:00 to 2024-05-20 00:00");
  _clock.seconds = 1716206400;  // Monday
  EXPECT_EQ(span("thisweek"), "2024-05-20 00:00 to 2024-05-27 00:00");
}

TEST_F(DateWordsTest, WhatNoCalendarHasIsNoDate) {
  for (const char* word : {"", "24", "2024-", "2024-5", "2024-13", "2024-00", "2024-02-30",
                           "2023-02-29", "2024-05-17-01", "-2024", "2024-05-1x", "d", "xd", "-3d",
                           "3h", "999999999d", "99999999999999999999d", "tomorrow", "soon"}) {
    SCOPED_TRACE(word);
    EXPECT_FALSE(dateSpanOf(word));
  }
}

TEST_F(DateWordsTest, TheLongestWayBackIsADate) {
  EXPECT_TRUE(dateSpanOf("100000d"));
  EXPECT_TRUE(dateSpanOf("100000y"));
  EXPECT_TRUE(dateSpanOf("9999-12-31"));
}

TEST_F(DateWordsTest, AWrongDateHasANearOne) {
  struct Case {
    const char *rule, *word, *nearest;
  };
  for (auto [rule, word, nearest] : {Case{"zeros", "2024-5-7", "2024-05-07"},
                                     {"slashes", "2024/05/17", "2024-05-17"},
                                     {"the other way round", "17.5.2024", "2024-05-17"},
                                     {"a month alone", "2024/5", "2024-05"},
                                     {"no such day", "2024-02-31", "2024-02-29"},
                                     {"no such month", "2024-13", "2024-12"},
                                     {"a slip", "yesteday", "yesterday"},
                                     {"a slip of a week", "last-week", "lastweek"},
                                     {"nothing like it", "whenever", ""},
                                     {"too much", "2024-05-17-01", ""}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(nearestDateWord(word), nearest);
    EXPECT_TRUE(!*nearest || dateSpanOf(nearest));
  }
}

TEST_F(DateWordsTest, AnInternetDateHasAZoneOrIsLocal) {
  struct Case {
    const char* text;
    double seconds;
  };
  for (auto [text, seconds] : {Case{"2024-05-17T13:30:00Z", kNow},
                               {"2024-05-17T15:30:00+02:00", kNow},
                               {"2024-05-17 15:30:00 +0200", kNow},
                               {"2024-05-17T11:00:00-02:30", kNow},
                               {"2024-05-17T15:30", kNow},
                               {"2024-05-17T15:30:00", kNow},
                               {"2024-05-17", kNow - 15.5 * 3600}}) {
    SCOPED_TRACE(text);
    ASSERT_TRUE(internetTime(text));
    EXPECT_EQ(*internetTime(text), seconds);
  }
  for (const char* text : {"", "2024", "2024-05", "2024-05-17T", "2024-05-17T25:00", "2024-05-17T1",
                           "2024-05-17T13:30:00+2", "T13:30"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(internetTime(text));
  }
}

TEST_F(DateWordsTest, BeginningsAreCountedFromNow) {
  EXPECT_EQ(shown(beginningOfDay(-1)), "2024-05-16 00:00");
  EXPECT_EQ(shown(beginningOfWeek(1)), "2024-05-20 00:00");
  EXPECT_EQ(shown(beginningOfMonth(-5)), "2023-12-01 00:00");
  EXPECT_EQ(shown(beginningOfYear(-1)), "2023-01-01 00:00");
  EXPECT_LT(beginningOfDay(INT64_MIN), beginningOfDay(0)) << "what is beyond reason is bounded";
}

}  // namespace
}  // namespace kbx
