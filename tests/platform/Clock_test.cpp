#include "platform/system/Clock.h"

#include <gtest/gtest.h>

#include <chrono>

#include "platform/objects/NSDate.h"
#include "tests/support/FakeClock.h"

namespace kbx {
namespace {

double systemSeconds() {
  using namespace std::chrono;
  return duration<double>(system_clock::now().time_since_epoch()).count();
}

TEST(Clock, TheSystemsClockTellsTheTimeOfDay) {
  const double before = systemSeconds();
  const double now = Clock::current().secondsSince1970();
  EXPECT_LE(before, now);
  EXPECT_LE(now, systemSeconds());
}

TEST(Clock, ADateOfNowIsByTheClockInForce) {
  FakeClock clock(1714568523.456);
  ScopedService<Clock> installed(clock);
  EXPECT_NEAR(NSDate::date()->timeIntervalSince1970(), 1714568523.456, 1e-6);
  clock.seconds = 0;
  EXPECT_EQ(NSDate::date()->timeIntervalSinceReferenceDate(), -NSTimeIntervalSince1970);
}

}  // namespace
}  // namespace kbx
