#include "platform/text/NSDateFormatter.h"

#include <unicode/udat.h>
#include <unicode/ustring.h>

#include <cmath>
#include <mutex>
#include <optional>
#include <string>

#include "platform/objects/NSClass.h"

namespace kbx {

KBX_CLASS(NSDateFormatter)

namespace {

/// ICU lets threads share a format, but the formats share parts of their own, which it completes at
/// their first uses by means that no thread sanitizer sees. So one lock is held for all of them.
std::mutex& formatsLock() {
  static auto* const lock = new std::mutex;
  return *lock;
}

std::u16string unitsOf(const NSString* text) {
  if (!text) return {};
  return text->visitUnits([](auto units) { return std::u16string(units.begin(), units.end()); });
}

/// ICU's milliseconds since 1970; absent for what is no number or beyond its calendars.
///
/// Whole microseconds: the seconds of a date carry an error below one, which would otherwise turn
/// .456 into .455.
std::optional<UDate> milliseconds(double seconds) {
  constexpr double kFarthestSecond = 8.64e12;
  if (!(std::abs(seconds) <= kFarthestSecond)) return std::nullopt;
  return std::round(seconds * 1e6) / 1e3;
}

}  // namespace

Ref<NSDateFormatter> NSDateFormatter::initWithDateFormat(NSString* format, const char* locale,
                                                         const char* timeZone) {
  const std::u16string pattern = unitsOf(format);
  const std::u16string zone = timeZone ? unitsOf(NSString::stringWithLossyUTF8(timeZone)) : u"";
  std::lock_guard held(formatsLock());
  UErrorCode status = U_ZERO_ERROR;
  UDateFormat* opened =
      udat_open(UDAT_PATTERN, UDAT_PATTERN, locale, timeZone ? zone.data() : nullptr, -1,
                pattern.data(), static_cast<std::int32_t>(pattern.size()), &status);
  return Ref<NSDateFormatter>::adopt(new NSDateFormatter(U_SUCCESS(status) ? opened : nullptr));
}

NSDateFormatter::~NSDateFormatter() {
  std::lock_guard held(formatsLock());
  if (_format) udat_close(_format);
}

Ref<NSString> NSDateFormatter::stringFromDate(NSDate* date) const {
  const auto time = date ? milliseconds(date->timeIntervalSince1970()) : std::nullopt;
  if (!time || !_format) return nullptr;
  std::lock_guard held(formatsLock());
  std::u16string units(64, u'\0');
  for (;;) {
    UErrorCode status = U_ZERO_ERROR;
    const auto capacity = static_cast<std::int32_t>(units.size());
    const std::int32_t length =
        udat_format(_format, *time, units.data(), capacity, nullptr, &status);
    units.resize(static_cast<std::size_t>(length));
    if (status != U_BUFFER_OVERFLOW_ERROR)
      return U_SUCCESS(status) ? NSString::stringWithUTF16(units) : nullptr;
  }
}

}  // namespace kbx
