// LocalTime: the user's calendar and clock.
#pragma once

#include <cstdint>

#include "platform/system/Service.h"

namespace kbx {

/// A date and time as people say it. Parts beyond their range carry over into the next larger one:
/// day 0 is the last of the month before.
struct CivilTime {
  std::int64_t year;
  int month, day;  // from 1
  int hour = 0, minute = 0, second = 0;
};

/// The time zone of the user. Called from any thread.
class LocalTime {
 public:
  virtual ~LocalTime() = default;
  /// Seconds since 1970-01-01 00:00:00 UTC. A time that clocks skip is as long behind the change as
  /// it is said to be; of a time that comes twice it is either.
  virtual double secondsOf(const CivilTime& time) = 0;
  /// What the clock on the wall shows.
  virtual CivilTime civilTime(double secondsSince1970) = 0;

  KBX_SERVICE_INTERFACE(LocalTime)
};

}  // namespace kbx
