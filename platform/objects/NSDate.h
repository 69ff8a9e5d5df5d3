// NSDate: a point in time.
#pragma once

#include "platform/objects/NSObject.h"

namespace kbx {

/// Seconds from 1970-01-01 to 2001-01-01, both at midnight UTC.
inline constexpr double NSTimeIntervalSince1970 = 978307200.0;

/// An immutable point in time, in seconds since 2001-01-01 00:00:00 UTC (the reference date).
class KBX_PLATFORM NSDate final : public NSObject {
  KBX_OBJECT(NSDate, NSObject)
 public:
  /// The present moment, by the Clock. (date)
  static Ref<NSDate> date();
  static Ref<NSDate> dateWithTimeIntervalSinceReferenceDate(double seconds);
  static Ref<NSDate> dateWithTimeIntervalSince1970(double seconds);

  double timeIntervalSinceReferenceDate() const noexcept { return _seconds; }
  double timeIntervalSince1970() const noexcept { return _seconds + NSTimeIntervalSince1970; }

  /// "2026-11-21 03:56:00 +0000": UTC, whole seconds. A date that has no year of its own (not a
  /// number, beyond the calendar) prints its seconds.
  Ref<NSString> description() const override;
  bool isEqual(NSObject* other) const override;
  std::size_t hash() const override;

 private:
  explicit NSDate(double seconds) noexcept : _seconds(seconds) {}

  const double _seconds;
};

}  // namespace kbx
