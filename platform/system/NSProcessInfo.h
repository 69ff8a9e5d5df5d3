// NSProcessInfo: what a process can ask about itself and its system.
#pragma once

#include <cstdint>

#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"
#include "platform/system/OperatingSystem.h"

namespace kbx {

/// The one object that answers for the process. It keeps no answers: every question goes to the
/// service behind it. Any thread.
class KBX_PLATFORM NSProcessInfo final : public NSObject {
  KBX_OBJECT(NSProcessInfo, NSObject)
 public:
  /// The one object of the process, never freed. (processInfo)
  static NSProcessInfo* processInfo();

  /// The file name of the executable; malformed UTF-8 becomes U+FFFD. (processName)
  Ref<NSString> processName() const;
  std::int32_t processIdentifier() const;
  /// The variables by name; the first of two with the same name counts. (environment)
  Ref<NSDictionary> environment() const;
  /// A text that no other call gives, in this process or another: a UUID, the process number and
  /// a sequence number, joined by hyphens. (globallyUniqueString)
  Ref<NSString> globallyUniqueString() const;

  NSOperatingSystemVersion operatingSystemVersion() const;
  /// Whether operatingSystemVersion() is not below `version`.
  /// (isOperatingSystemAtLeastVersion:)
  bool isOperatingSystemAtLeastVersion(NSOperatingSystemVersion version) const;

  bool automaticTerminationSupportEnabled() const;
  void setAutomaticTerminationSupportEnabled(bool enabled);
  /// Keeps the system from ending the process while it is idle. (disableAutomaticTermination:)
  void disableAutomaticTermination(NSString* reason);
  /// Takes one disableAutomaticTermination() back. (enableAutomaticTermination:)
  void enableAutomaticTermination(NSString* reason);

 private:
  NSProcessInfo() = default;
};

}  // namespace kbx
