#include <gmock/gmock.h>

#include "platform/logging/UnifiedLog.h"
#include "platform/logging/linux/JournalFields.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using testing::ElementsAre;

TEST(UnifiedLogLinux, TheSystemHasNoUnifiedLogButGivesHandles) {
  EXPECT_FALSE(UnifiedLog::current().isAvailable());
  EXPECT_TRUE(os_log_create("org.ferncase.Host"_ns, "KBXLogger"_ns));
}

TEST(UnifiedLogLinux, TheJournalGetsSubsystemAndCategoryAsFields) {
  EXPECT_THAT(errorEntry("org.ferncase.Host"_ns, "KBXLogger.Parser"_ns, "two\nlines"),
              ElementsAre("MESSAGE=two\nlines", "PRIORITY=3", "SUBSYSTEM=org.ferncase.Host",
                          "CATEGORY=KBXLogger.Parser"));
}

TEST(UnifiedLogLinux, NamesThatAreNoUTF8StayReadable) {
  auto lone = NSString::stringWithUTF16(u"KBXLogger.\xD800");
  EXPECT_THAT(
      errorEntry(nullptr, lone, ""),
      ElementsAre("MESSAGE=", "PRIORITY=3", "SUBSYSTEM=(null)", "CATEGORY=KBXLogger.\xEF\xBF\xBD"));
}

}  // namespace
}  // namespace kbx
