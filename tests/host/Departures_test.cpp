#include "host/watch/Departures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kbx {
namespace {

constexpr Moment kFirst{std::chrono::seconds(1)}, kLater{std::chrono::seconds(2)};

TEST(Departures, EachIsTakenOnceByItsNumber) {
  Departures departures;
  departures.add(7, {"/a", true, 3, kFirst});
  EXPECT_FALSE(departures.take(8));
  const auto taken = departures.take(7);
  ASSERT_TRUE(taken);
  EXPECT_EQ(taken->path, "/a");
  EXPECT_EQ(taken->watch, 3);
  EXPECT_FALSE(departures.take(7));
}

TEST(Departures, WhatIsToldNoNewPathInTimeIsGivenUp) {
  Departures departures;
  EXPECT_FALSE(departures.deadline());
  departures.add(2, {"/b", false, WatchTree::kNone, kLater});
  departures.add(1, {"/a", false, WatchTree::kNone, kFirst});
  EXPECT_EQ(departures.deadline(), kFirst);
  EXPECT_TRUE(departures.takeExpired(Moment{}).empty());
  const auto expired = departures.takeExpired(kFirst);
  ASSERT_EQ(expired.size(), 1u);
  EXPECT_EQ(expired[0].path, "/a");
  EXPECT_EQ(departures.deadline(), kLater);
  EXPECT_TRUE(departures.take(2));
}

TEST(Departures, AWatchThatIsLostIsNoLongerTheirs) {
  Departures departures;
  departures.add(1, {"/a", true, 3, kFirst});
  departures.add(2, {"/b", true, 4, kFirst});
  departures.loseWatch(3);
  EXPECT_EQ(departures.take(1)->watch, WatchTree::kNone);
  EXPECT_EQ(departures.take(2)->watch, 4);
}

}  // namespace
}  // namespace kbx
