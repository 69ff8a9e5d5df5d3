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

TEST(Dates, BlanksAndCommentsMayStandWithinTheTime) {
  EXPECT_EQ(dateOf("Fri, 21 Nov 1997 09(comment):   55  :  06 -0600"), 880127706);
}

TEST(Dates, WhatIsNoDateIsAbsent) {
  EXPECT_EQ(dateOf(""), std::nullopt);
  EXPECT_EQ(dateOf("yesterday"), std::nullopt);
  EXPECT_EQ(dateOf(std::string(100000, '(')), std::nullopt);
}

TEST(Dates, OfTransportStandsBehindTheLastSemicolon) {
  EXPECT_EQ(receivedDateOf("from a; by b;\n Wed, 10 Jan 2024 15:02:47 +0000"), 1704898967);
  EXPECT_EQ(receivedDateOf("from a Wed, 10 Jan 2024 15:02:47 +0000"), std::nullopt);
}

}  // namespace
}  // namespace kbx
