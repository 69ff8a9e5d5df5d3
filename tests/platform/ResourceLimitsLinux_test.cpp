#include <gtest/gtest.h>

#include "platform/system/ResourceLimits.h"

namespace kbx {
namespace {

TEST(ResourceLimitsLinux, TheSoftLimitOfOpenFilesDoesNotExceedTheHardOne) {
  const auto limit = ResourceLimits::current().openFiles();
  ASSERT_TRUE(limit);
  EXPECT_GT(limit->soft, 0u);
  EXPECT_LE(limit->soft, limit->hard);
}

TEST(ResourceLimitsLinux, SettingWhatIsSetChangesNothing) {
  const auto limit = ResourceLimits::current().openFiles();
  ASSERT_TRUE(limit);
  EXPECT_TRUE(ResourceLimits::current().setOpenFiles(*limit));
  EXPECT_EQ(ResourceLimits::current().openFiles(), limit);
}

TEST(ResourceLimitsLinux, ASoftLimitAboveTheHardOneIsRefused) {
  const auto limit = ResourceLimits::current().openFiles();
  ASSERT_TRUE(limit);
  EXPECT_FALSE(ResourceLimits::current().setOpenFiles({2, 1}));
  EXPECT_EQ(ResourceLimits::current().openFiles(), limit);
}

}  // namespace
}  // namespace kbx
