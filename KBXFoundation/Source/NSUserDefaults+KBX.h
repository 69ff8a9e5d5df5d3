// NSUserDefaults(KBX): values of the expected type, or else a default.
#pragma once

#include <cstdint>

#include "platform/objects/NSGeometry.h"
#include "platform/preferences/NSUserDefaults.h"

namespace kbx {

// Each takes a key, which is required: without one "Precondition Failed: key" is raised. Bad data
// is no error, it gives the default. All are safe from any thread.
//
// The forms with a domain read the preferences of that domain directly and not the receiver; the
// others read the receiver with everything that it looks into.

/// A truth value of the domain: a boolean, a number, or yes, no, true or false in any case.
/// (kbxBoolForKey:domain:defaultValue:)
bool kbxBoolForKeyDomain(NSUserDefaults* defaults, NSString* key, NSString* domain,
                         bool defaultValue);
/// A whole number of the domain, as a number or as a text.
/// (kbxIntegerForKey:domain:defaultValue:)
std::int64_t kbxIntegerForKeyDomain(NSUserDefaults* defaults, NSString* key, NSString* domain,
                                    std::int64_t defaultValue);
/// A value of the domain, of any class. (kbxObjectForKey:domain:defaultValue:)
Ref<NSObject> kbxObjectForKeyDomain(NSUserDefaults* defaults, NSString* key, NSString* domain,
                                    NSObject* defaultValue);

/// The value, of any class. (kbxObjectForKey:defaultValue:)
Ref<NSObject> kbxObjectForKey(NSUserDefaults* defaults, NSString* key, NSObject* defaultValue);
/// The value when it is a text; a number is not one. (kbxStringForKey:defaultValue:)
Ref<NSString> kbxStringForKey(NSUserDefaults* defaults, NSString* key, NSString* defaultValue);

/// What the value answers when it is asked for its boolean, integer or double value, as numbers and
/// texts do; a text without a number answers 0. (kbxBoolForKey:defaultValue:,
/// kbxIntegerForKey:defaultValue:, kbxDoubleForKey:defaultValue:)
bool kbxBoolForKey(NSUserDefaults* defaults, NSString* key, bool defaultValue);
std::int64_t kbxIntegerForKey(NSUserDefaults* defaults, NSString* key, std::int64_t defaultValue);
double kbxDoubleForKey(NSUserDefaults* defaults, NSString* key, double defaultValue);

/// The size of a text such as "{640, 480}"; (0, 0) for a text of another form.
/// (kbxSizeForKey:defaultValue:)
NSSize kbxSizeForKey(NSUserDefaults* defaults, NSString* key, NSSize defaultValue);

}  // namespace kbx
