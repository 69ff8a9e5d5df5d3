// NSDateFormatter: points in time as text, by a pattern.
#pragma once

#include "platform/objects/NSDate.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// Writes dates by one of Unicode's date patterns, such as "yyyy-MM-dd HH:mm:ss.SSS". Never changes
/// after it is made; any number of threads may use one at the same time.
class KBX_PLATFORM NSDateFormatter final : public NSObject {
  KBX_OBJECT(NSDateFormatter, NSObject)
 public:
  /// format    the pattern; absent is empty
  /// locale    such as "de_CH"; nullptr is the process's own
  /// timeZone  such as "Europe/Zurich"; nullptr is the system's
  static Ref<NSDateFormatter> initWithDateFormat(NSString* format, const char* locale = nullptr,
                                                 const char* timeZone = nullptr);

  /// The text of a date; absent for an absent date and for one beyond every calendar.
  /// (stringFromDate:)
  Ref<NSString> stringFromDate(NSDate* date) const;

 private:
  explicit NSDateFormatter(void** format) noexcept : _format(format) {}
  ~NSDateFormatter() override;

  void** const _format;  // ICU's UDateFormat*; nullptr where ICU cannot make one
};

}  // namespace kbx
