// Clock: what time it is.
#pragma once

#include "platform/Export.h"
#include "platform/system/Service.h"

namespace kbx {

/// The time of day. Called from any thread.
class KBX_PLATFORM Clock {
 public:
  virtual ~Clock();
  /// Seconds since 1970-01-01 00:00:00 UTC, with fractions, without leap seconds.
  virtual double secondsSince1970() = 0;

  KBX_SERVICE_INTERFACE(Clock)
};

}  // namespace kbx
