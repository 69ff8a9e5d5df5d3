// CFPreferences: the values of one named domain, read directly.
#pragma once

#include <cstdint>

#include "platform/objects/NSObject.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// The application identifier that stands for the running program.
inline NSString* kCFPreferencesCurrentApplication() {
  return "kCFPreferencesCurrentApplication"_ns;
}

// Each looks into the domain of the application identifier alone: not into the global domain, the
// arguments of the program or what was registered. Safe from any thread.

/// The value, or absent.
KBX_PLATFORM Ref<NSObject> CFPreferencesCopyAppValue(NSString* key, NSString* applicationID);

/// A boolean, a number that is not zero, or a text that is "yes" or "true" in any case.
///
/// isValid  where to store whether there is such a value: "no" and "false" count as texts, others
///          do not; may be absent. Without a valid value the result is false.
KBX_PLATFORM bool CFPreferencesGetAppBooleanValue(NSString* key, NSString* applicationID,
                                                  bool* isValid);

/// A whole number, or a text that is one from its first unit to its last.
///
/// isValid  where to store whether there is such a value that fits 64 bits with a sign; may be
///          absent. Without a valid value the result is 0.
KBX_PLATFORM std::int64_t CFPreferencesGetAppIntegerValue(NSString* key, NSString* applicationID,
                                                          bool* isValid);

}  // namespace kbx
