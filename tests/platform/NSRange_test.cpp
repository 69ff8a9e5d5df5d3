#include "platform/objects/NSRange.h"

#include <gtest/gtest.h>

#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSRange, TheIntersectionIsWhatBothHave) {
  struct Case {
    const char* rule;
    NSRange a, b, both;
  };
  for (auto [rule, a, b, both] :
       {Case{"one inside the other", {0, 10}, {3, 4}, {3, 4}},
        {"overlapping ends", {0, 5}, {3, 5}, {3, 2}},
        {"the same", {2, 2}, {2, 2}, {2, 2}},
        {"touching", {0, 3}, {3, 3}, {0, 0}},
        {"apart", {0, 1}, {5, 1}, {0, 0}},
        {"empty inside", {0, 10}, {3, 0}, {0, 0}},
        {"an end beyond the last word", {5, UINT64_MAX}, {7, 2}, {7, 2}},
        {"not found", kRangeNotFound, {0, 10}, {0, 0}},
        {"two ends beyond the last word", {5, UINT64_MAX}, {7, UINT64_MAX}, {7, UINT64_MAX - 7}}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(NSIntersectionRange(a, b), both);
    EXPECT_EQ(NSIntersectionRange(b, a), both);
  }
}

TEST(NSRange, TheTextNamesLocationAndLength) {
  EXPECT_EQ(text(NSStringFromRange(NSMakeRange(1, 2))), "{1, 2}");
  EXPECT_EQ(text(NSStringFromRange({UINT64_MAX, UINT64_MAX})),
            "{18446744073709551615, 18446744073709551615}");
  EXPECT_EQ(text(NSStringFromRange(kRangeNotFound)), "{9223372036854775807, 0}");
}

}  // namespace
}  // namespace kbx
