// NSUserDefaults: what the user and the caller have chosen, by key.
#pragma once

#include <cstdint>

#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"
#include "platform/system/Service.h"

namespace kbx {

/// Where preferences are kept: one dictionary for each domain. Safe from any thread.
class KBX_PLATFORM Preferences {
 public:
  virtual ~Preferences();
  /// The domain's values; absent when nothing is stored for it.
  virtual Ref<NSDictionary> domain(NSString* name) = 0;

  KBX_SERVICE_INTERFACE(Preferences)
};

/// The defaults of the process: its own domain, then what was registered. Safe from any thread.
class KBX_PLATFORM NSUserDefaults final : public NSObject {
  KBX_OBJECT(NSUserDefaults, NSObject)
 public:
  /// The one object of the process, never freed. (standardUserDefaults)
  static NSUserDefaults* standardUserDefaults();

  /// The value, or absent. (objectForKey:)
  Ref<NSObject> objectForKey(NSString* key) const;
  /// A number that is not zero, or a text that reads as true. (boolForKey:)
  bool boolForKey(NSString* key) const;

 private:
  NSUserDefaults() = default;
};

}  // namespace kbx
