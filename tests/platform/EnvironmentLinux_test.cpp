#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "platform/system/Environment.h"

namespace kbx {
namespace {

TEST(EnvironmentLinux, AnswersWithTheVariablesAsTheyAreNow) {
  ASSERT_EQ(setenv("FERNCASE_TEST_VARIABLE", "a=b", 1), 0);
  const auto now = Environment::current().variables();
  ASSERT_EQ(unsetenv("FERNCASE_TEST_VARIABLE"), 0);
  const auto later = Environment::current().variables();
  EXPECT_EQ(std::count(now.begin(), now.end(), "FERNCASE_TEST_VARIABLE=a=b"), 1);
  EXPECT_EQ(std::count(later.begin(), later.end(), "FERNCASE_TEST_VARIABLE=a=b"), 0);
}

}  // namespace
}  // namespace kbx
