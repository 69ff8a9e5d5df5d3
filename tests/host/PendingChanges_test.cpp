#include "host/watch/PendingChanges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kbx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Moment kStart{std::chrono::hours(1)};
constexpr auto kRest = PendingChanges::kRest;
constexpr std::chrono::milliseconds kShort{1};

TEST(PendingChanges, WhatIsTouchedIsTakenWhenItHasRested) {
  PendingChanges changes;
  EXPECT_EQ(changes.deadline(), std::nullopt);
  changes.touch("/a", kStart);
  EXPECT_EQ(changes.deadline(), kStart + kRest);
  EXPECT_THAT(changes.take(kStart + kRest - kShort), IsEmpty());
  EXPECT_THAT(changes.take(kStart + kRest), ElementsAre("/a"));
  EXPECT_EQ(changes.deadline(), std::nullopt);
}

TEST(PendingChanges, EachTouchBeginsTheRestAnew) {
  PendingChanges changes;
  changes.touch("/a", kStart);
  changes.touch("/b", kStart + kShort);
  changes.touch("/a", kStart + 2 * kShort);
  EXPECT_EQ(changes.deadline(), kStart + kShort + kRest);
  EXPECT_THAT(changes.take(kStart + kShort + kRest), ElementsAre("/b"));
  EXPECT_THAT(changes.take(kStart + 2 * kShort + kRest), ElementsAre("/a"));
}

TEST(PendingChanges, WhatHasSettledIsTakenAtOnceAndOnce) {
  PendingChanges changes;
  changes.touch("/a", kStart);
  changes.settle("/a");
  changes.settle("/folder");
  changes.settle("/a");
  changes.touch("/a", kStart);  // it will be looked at after this
  EXPECT_LT(changes.deadline(), kStart);
  EXPECT_THAT(changes.take(kStart), ElementsAre("/a", "/folder"));
  EXPECT_THAT(changes.take(kStart + kRest), IsEmpty());
}

}  // namespace
}  // namespace kbx
