#include "platform/objects/NSDate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/objects/NSNumber.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSDate> date(double seconds) { return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds); }

TEST(NSDate, TheReferenceDateIsTheFirstOfJanuary2001) {
  EXPECT_EQ(date(0)->timeIntervalSince1970(), 978307200);
  EXPECT_EQ(NSDate::dateWithTimeIntervalSince1970(0)->timeIntervalSinceReferenceDate(), -978307200);
  EXPECT_EQ(date(12.5)->timeIntervalSinceReferenceDate(), 12.5);
}

TEST(NSDate, TheDescriptionIsInUTCAndWholeSeconds) {
  struct Case {
    double seconds;
    const char* text;
  };
  for (auto [seconds, printed] : {Case{0, "2001-01-01 00:00:00 +0000"},
                                  {0.999, "2001-01-01 00:00:00 +0000"},
                                  {-0.001, "2000-12-31 23:59:59 +0000"},
                                  {86399, "2001-01-01 23:59:59 +0000"},
                                  {-978307200, "1970-01-01 00:00:00 +0000"},
                                  {-978307201, "1969-12-31 23:59:59 +0000"},
                                  {97200 + 86400.0 * 58, "2001-03-01 03:00:00 +0000"},
                                  {252460800 - 1, "2008-12-31 23:59:59 +0000"},
                                  {252423907200, "9999-12-31 00:00:00 +0000"},
                                  {-63113904000, "0001-01-01 00:00:00 +0000"}}) {
    SCOPED_TRACE(printed);
    EXPECT_EQ(text(date(seconds)), printed);
  }
}

TEST(NSDate, WhatHasNoYearOfItsOwnPrintsItsSeconds) {
  EXPECT_EQ(text(date(1e300)), "1e+300");
  EXPECT_EQ(text(date(-std::numeric_limits<double>::infinity())), "-inf");
  EXPECT_EQ(text(date(std::nan(""))), "nan");
  EXPECT_EQ(text(date(86400.0 * 366 * 10000)), "316224000000");
}

TEST(NSDate, DatesAreEqualWhenTheirSecondsAre) {
  EXPECT_TRUE(isEqual(date(1.5), NSDate::dateWithTimeIntervalSince1970(978307201.5)));
  EXPECT_EQ(date(1.5)->hash(), NSDate::dateWithTimeIntervalSince1970(978307201.5)->hash());
  EXPECT_EQ(date(0)->hash(), date(-0.0)->hash());
  EXPECT_TRUE(isEqual(date(0), date(-0.0)));
  EXPECT_FALSE(isEqual(date(1), date(2)));
  EXPECT_FALSE(isEqual(date(1), NSNumber::numberWithDouble(1)));
  EXPECT_FALSE(date(1)->isEqual(nullptr));
}

}  // namespace
}  // namespace kbx
