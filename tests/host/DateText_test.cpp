#include "host/results/DateText.h"

#include <gtest/gtest.h>

#include <limits>

namespace kbx {
namespace {

std::string dateOf(double since1970) {
  return internetDate(NSDate::dateWithTimeIntervalSince1970(since1970)).value_or("absent");
}

TEST(InternetDate, WholeSecondsHaveNoDecimals) {
  EXPECT_EQ(dateOf(0), "1970-01-01T00:00:00Z");
  EXPECT_EQ(dateOf(1795233360), "2026-11-21T03:56:00Z");
  EXPECT_EQ(dateOf(951782399), "2000-02-28T23:59:59Z");
  EXPECT_EQ(dateOf(951782400), "2000-02-29T00:00:00Z");
}

TEST(InternetDate, DecimalsStandWhereThereAreAny) {
  EXPECT_EQ(dateOf(0.5), "1970-01-01T00:00:00.5Z");
  EXPECT_EQ(dateOf(1795233360.25), "2026-11-21T03:56:00.25Z");
  EXPECT_EQ(dateOf(-978307199.999999), "1939-01-01T00:00:00.000001Z");
}

TEST(InternetDate, RoundingCarriesIntoTheNextSecond) {
  EXPECT_EQ(dateOf(59.9999999), "1970-01-01T00:01:00Z");
}

TEST(InternetDate, BeforeTheEpochTheFractionStillCountsForward) {
  EXPECT_EQ(dateOf(-1), "1969-12-31T23:59:59Z");
  EXPECT_EQ(dateOf(-0.25), "1969-12-31T23:59:59.75Z");
}

TEST(InternetDate, TheYearsEndAt0And9999) {
  EXPECT_EQ(dateOf(-62167219200), "0000-01-01T00:00:00Z");
  EXPECT_EQ(dateOf(-62167219201), "absent");
  EXPECT_EQ(dateOf(253402300799), "9999-12-31T23:59:59Z");
  EXPECT_EQ(dateOf(253402300800), "absent");
}

TEST(InternetDate, NoPointInTimeIsAbsent) {
  using Limits = std::numeric_limits<double>;
  for (double seconds : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                         Limits::max(), Limits::lowest(), 3e11, -3e11, 1e18})
    EXPECT_EQ(dateOf(seconds), "absent") << seconds;
}

}  // namespace
}  // namespace kbx
