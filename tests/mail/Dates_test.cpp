#include "mail/Dates.h"

#include <gtest/gtest.h>

namespace kbx {
namespace {

TEST(Dates, AreReadWithTheirZone) {
  EXPECT_EQ(dateOf(" Wed, 10 Jan 2024 15:02:47 +0000\n"), 1704898967);
  EXPECT_EQ(dateOf("Wed, 10 Jan 2024 16:02:47 +0100 (CET)"), 1704898967);
  EXPECT_EQ(dateOf("10 Jan 24 10:02:47 EST"), 1704898967);
  EXPECT_EQ(dateOf("Wed, 10 Jan 2024 09:02:47 -600"), 1704898967);
}

TEST(Dates, TheFormsOfOtherProgramsAreRead) {
  constexpr double kAfternoon = 1715952600;  // 2024-05-17 13:30:00
  EXPECT_EQ(dateOf("2024-05-17T13:30:00Z"), kAfternoon);
  EXPECT_EQ(dateOf("2024-05-17T15:30:00.250+02:00"), kAfternoon);
  EXPECT_EQ(dateOf("2024-05-17 13:30:00 +0000"), kAfternoon);
  EXPECT_EQ(dateOf("Fri, 17 May 2024 15:30:00 +02:00"), kAfternoon);
  EXPECT_EQ(dateOf("Fri, 17 May 2024 15:30:00 +02"), kAfternoon);
  EXPECT_EQ(dateOf("Fri, 17 May 2024 15:30:00 GMT+0200"), kAfternoon);
  EXPECT_EQ(dateOf("Fri, 17 May 2024 11:30:00 UTC-02:00"), kAfternoon);
  EXPECT_EQ(dateOf("Fri, 17 May 2024 13:30:00.123 +0000"), kAfternoon);
  EXPECT_EQ(dateOf("Fri, 17 May 2024 15:30:00 CEST"), kAfternoon);
  EXPECT_EQ(dateOf("Fri, 17 May 2024 22:30:00 JST"), kAfternoon);
  EXPECT_EQ(dateOf("Fri, 17 May 2024 1:30:00 PM +0000"), kAfternoon);
  EXPECT_EQ(dateOf("5/17/2024 1:30:00PM"), kAfternoon);
  EXPECT_EQ(dateOf("17 May 2024 12:30 AM GMT"), kAfternoon - 13 * 3600);
  EXPECT_EQ(dateOf("Fri May 17 13:30:00 2024"), kAfternoon);
  EXPECT_EQ(dateOf("Fri May 17 06:30:00 PDT 2024"), kAfternoon);
  EXPECT_EQ(dateOf("Fri, 17 May 124 13:30:00 +0000"), kAfternoon);
  EXPECT_EQ(dateOf("Fri, 17 May 2024 13:29:60 +0000"), kAfternoon);
  EXPECT_EQ(dateOf("Fri, 17 May 2024 13:30:00 -0700 (PDT)"), kAfternoon + 7 * 3600);
}

TEST(Dates, BlanksAndCommentsMayStandWithinTheTime) {
  EXPECT_EQ(dateOf("Fri, 21 Nov 1997 09(comment):   55  :  06 -0600"), 880127706);
}

TEST(Dates, WhatIsNoDateIsAbsent) {
  EXPECT_EQ(dateOf(""), std::nullopt);
  EXPECT_EQ(dateOf("yesterday"), std::nullopt);
  EXPECT_EQ(dateOf("2024-05-17T"), std::nullopt);
  EXPECT_EQ(dateOf("5x: PM +"), std::nullopt);
  EXPECT_EQ(dateOf(std::string(100000, '(')), std::nullopt);
}

TEST(Dates, OfTransportStandsBehindTheLastSemicolon) {
  EXPECT_EQ(receivedDateOf("from a; by b;\n Wed, 10 Jan 2024 15:02:47 +0000"), 1704898967);
  EXPECT_EQ(receivedDateOf("by b; Wed, 10 Jan 2024 15:02:47 +0000 (for c; by d)"), 1704898967);
  EXPECT_EQ(receivedDateOf("from (a; Wed, 10 Jan 2024 15:02:47 +0000"), 1704898967);
  EXPECT_EQ(receivedDateOf("from a Wed, 10 Jan 2024 15:02:47 +0000"), std::nullopt);
}

}  // namespace
}  // namespace kbx
