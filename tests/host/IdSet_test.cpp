#include "host/search/IdSet.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace kbx {
namespace {

constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

TEST(IdSet, HoldsWhatItWasMadeOf) {
  struct Case {
    const char* rule;
    std::vector<std::int64_t> ids;
  };
  for (const auto& [rule, ids] : {Case{"none", {}},
                                  {"one", {7}},
                                  {"dense", {1, 2, 3, 64, 65, 127, 128}},
                                  {"sparse", {1, 1000000, 2000000000000}},
                                  {"in any order", {9, 3, 5}},
                                  {"repeated", {4, 4, 4, 6}},
                                  {"negative", {-5, -1, 0, 1}},
                                  {"the limits", {kSmallest, 0, kLargest}},
                                  {"at the upper limit", {kLargest - 1, kLargest}}}) {
    SCOPED_TRACE(rule);
    const IdSet set(ids);
    for (const std::int64_t id : ids) EXPECT_TRUE(set.contains(id)) << id;
    EXPECT_TRUE(std::ranges::is_sorted(set.ids()));
    for (const std::int64_t other : {kSmallest + 1, std::int64_t{-7}, std::int64_t{8},
                                     std::int64_t{66}, std::int64_t{129}, kLargest - 2})
      EXPECT_FALSE(set.contains(other)) << other;
  }
}

TEST(IdSet, CountsEachOnce) { EXPECT_EQ(IdSet({4, 4, 4, 6}).count(), 2u); }

}  // namespace
}  // namespace kbx
