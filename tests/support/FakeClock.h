// FakeClock: a time of day that stands still.
#pragma once

#include <atomic>

#include "platform/system/Clock.h"

namespace kbx {

/// Install it with ScopedService<Clock>.
class FakeClock final : public Clock {
 public:
  explicit FakeClock(double secondsSince1970) : seconds(secondsSince1970) {}

  double secondsSince1970() override { return seconds; }

  std::atomic<double> seconds;
};

}  // namespace kbx
