#include "platform/logging/NSLog.h"

#include <gtest/gtest.h>

#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSLog, AMessageIsFormattedAndHandedToTheLog) {
  RecordingLog log;
  NSLog("%@ of %d"_ns, "one"_ns, 2);
  NSLog("two\nlines"_ns);
  NSLog(""_ns);
  EXPECT_EQ(log.lines(), (std::vector<std::string>{"one of 2", "two\nlines", ""}));
}

TEST(NSLog, AMessageThatIsAnArgumentIsNoFormat) {
  RecordingLog log;
  NSLog("%@"_ns, "100%@ of %s"_ns);
  EXPECT_EQ(log.lines(), std::vector<std::string>{"100%@ of %s"});
}

TEST(NSLog, AnAbsentFormatIsAnEmptyMessage) {
  RecordingLog log;
  NSLog(nullptr);
  EXPECT_EQ(log.lines(), std::vector<std::string>{""});
}

TEST(NSLog, TheLogBeforeIsPutBack) {
  RecordingLog outer;
  {
    RecordingLog inner;
    NSLog("in"_ns);
    EXPECT_EQ(inner.lines().size(), 1U);
  }
  NSLog("out"_ns);
  EXPECT_EQ(outer.lines(), std::vector<std::string>{"out"});
}

}  // namespace
}  // namespace kbx
