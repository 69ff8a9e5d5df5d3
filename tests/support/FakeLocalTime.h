// FakeLocalTime: a time zone that a test chooses.
#pragma once

#include <chrono>
#include <cmath>

#include "host/search/LocalTime.h"

namespace kbx {

/// A zone that is so many seconds ahead of UTC, and one hour more from two in the morning of
/// April 1 to two of November 1. Install it with ScopedService<LocalTime>.
class FakeLocalTime final : public LocalTime {
 public:
  explicit FakeLocalTime(double secondsAhead = 0, bool hasSummer = false)
      : _secondsAhead(secondsAhead), _hasSummer(hasSummer) {}

  double secondsOf(const CivilTime& time) override {
    using namespace std::chrono;
    const sys_days first(year(static_cast<int>(time.year)) /
                         month(static_cast<unsigned>(time.month)) / 1);
    const double days = static_cast<double>(first.time_since_epoch().count() + time.day - 1);
    const double utc = days * 86400 + time.hour * 3600.0 + time.minute * 60.0 + time.second;
    return utc - ahead(utc);
  }

  CivilTime civilTime(double seconds) override {
    using namespace std::chrono;
    const double local = seconds + ahead(seconds + _secondsAhead);
    const double day = std::floor(local / 86400);
    const year_month_day date{sys_days(days(static_cast<int>(day)))};
    const int rest = static_cast<int>(local - day * 86400);
    return {int{date.year()},
            static_cast<int>(unsigned{date.month()}),
            static_cast<int>(unsigned{date.day()}),
            rest / 3600,
            rest / 60 % 60,
            rest % 60};
  }

 private:
  /// local  without the hour of summer, or with it, except at the changes
  double ahead(double local) const {
    using namespace std::chrono;
    const year_month_day date{sys_days(days(static_cast<int>(std::floor((local - 7200) / 86400))))};
    const bool isSummer = _hasSummer && date.month() >= April && date.month() <= October;
    return _secondsAhead + (isSummer ? 3600 : 0);
  }

  const double _secondsAhead;
  const bool _hasSummer;
};

}  // namespace kbx
