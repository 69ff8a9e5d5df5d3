#include "platform/objects/NSDate.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSNumber.h"
#include "platform/objects/NSString.h"
#include "platform/system/Clock.h"

namespace kbx {

KBX_CLASS(NSDate)
KBX_ADOPTS(NSDate, NSCoding)

Ref<NSDate> NSDate::date() {
  return dateWithTimeIntervalSince1970(Clock::current().secondsSince1970());
}

Ref<NSDate> NSDate::dateWithTimeIntervalSinceReferenceDate(double seconds) {
  return Ref<NSDate>::adopt(new NSDate(seconds));
}

Ref<NSDate> NSDate::dateWithTimeIntervalSince1970(double seconds) {
  return dateWithTimeIntervalSinceReferenceDate(seconds - NSTimeIntervalSince1970);
}

Ref<NSString> NSDate::description() const {
  constexpr double kSecondsInTenThousandYears = 86400.0 * 366 * 10000;
  if (!(std::abs(_seconds) < kSecondsInTenThousandYears))
    return NSNumber::numberWithDouble(_seconds)->description();
  using namespace std::chrono;
  const sys_seconds time{seconds(static_cast<std::int64_t>(std::floor(timeIntervalSince1970())))};
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d +0000", int{date.year()},
                unsigned{date.month()}, unsigned{date.day()},
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return NSString::stringWithUTF8(text);
}

bool NSDate::isEqual(NSObject* other) const {
  auto* date = cast<NSDate>(other);
  return date && date->_seconds == _seconds;
}

std::size_t NSDate::hash() const { return std::hash<double>{}(_seconds); }

}  // namespace kbx
