#include "host/results/RepeatedContent.h"

#include <gtest/gtest.h>

#include "platform/objects/NSArray.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr std::size_t kTooMuch = std::size_t{1} << 25;

TEST(RepeatedContent, WhatIsWrittenForTheFirstTimeIsFree) {
  RepeatedContent repeated;
  auto list = NSArray::array(), inner = NSArray::array();
  EXPECT_TRUE(repeated.enter(list, kTooMuch, 0));
  EXPECT_TRUE(repeated.take(kTooMuch));
  EXPECT_TRUE(repeated.enter(inner, kTooMuch, 0));
  EXPECT_TRUE(repeated.take(kTooMuch));
  EXPECT_TRUE(repeated.take("text"_ns));
}

TEST(RepeatedContent, ACollectionIsNotEnteredAgainWhenItIsTooMuch) {
  for (auto [count, indent] : {std::pair{kTooMuch / 16, std::size_t{0}}, {1000, kTooMuch / 1000}}) {
    RepeatedContent repeated;
    auto list = NSArray::array();
    ASSERT_TRUE(repeated.enter(list, count, indent));
    repeated.leave();
    EXPECT_FALSE(repeated.enter(list, count, indent));
  }
}

TEST(RepeatedContent, TextsCountInWhatIsWrittenAgain) {
  RepeatedContent repeated;
  auto list = NSArray::array();
  ASSERT_TRUE(repeated.enter(list, 1, 0));
  ASSERT_TRUE(repeated.enter(list, 1, 0));
  EXPECT_TRUE(repeated.take(kTooMuch)) << "what is begun is written";
  EXPECT_FALSE(repeated.take("text"_ns));
  repeated.leave();
  EXPECT_TRUE(repeated.take("text"_ns)) << "written for the first time";
}

TEST(RepeatedContent, WhatStandsInsideIsWrittenAgainToo) {
  RepeatedContent repeated;
  auto list = NSArray::array(), inner = NSArray::array();
  ASSERT_TRUE(repeated.enter(list, 1, 0));
  ASSERT_TRUE(repeated.enter(list, 1, 0));
  EXPECT_FALSE(repeated.enter(inner, kTooMuch, 0));
}

TEST(RepeatedContent, DescriptionsShareOneBudget) {
  RepeatedContent repeated;
  const DescriptionBudget budget;
  EXPECT_FALSE(budget.isOutermost());
}

}  // namespace
}  // namespace kbx
