#include "platform/logging/UnifiedLog.h"

#include <gtest/gtest.h>

#include "tests/support/RecordingUnifiedLog.h"

namespace kbx {
namespace {

using Names = std::vector<std::string>;

TEST(UnifiedLog, AHandleIsReleasedWithItsLastReference) {
  RecordingUnifiedLog log;
  {
    auto handle = os_log_create("org.ferncase.Host"_ns, "KBXLogger"_ns);
    auto again = handle;
    handle = nullptr;
    EXPECT_EQ(log.released(), Names{});
  }
  EXPECT_EQ(log.released(), Names{"KBXLogger"});
}

TEST(UnifiedLog, EqualNamesGiveHandlesOfTheirOwn) {
  RecordingUnifiedLog log;
  auto first = os_log_create("s"_ns, "c"_ns), second = os_log_create("s"_ns, "c"_ns);
  EXPECT_FALSE(isSame(first, second));
}

}  // namespace
}  // namespace kbx
