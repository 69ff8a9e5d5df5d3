#include "platform/system/NSProcessInfo.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>

#include "platform/objects/NSClass.h"
#include "platform/system/AutomaticTermination.h"
#include "platform/system/Environment.h"
#include "platform/system/ProcessIdentity.h"
#include "platform/system/UUID.h"

namespace kbx {

KBX_CLASS(NSProcessInfo)

namespace {

/// Counts on from the time of the first call, so that even a process with the number of an ended
/// one, on a system without random bytes, does not repeat a text.
std::uint64_t nextSequenceNumber() {
  static std::atomic<std::uint64_t> next{
      static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count())};
  return next.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

NSProcessInfo* NSProcessInfo::processInfo() {
  static auto* const info = new NSProcessInfo;
  return info;
}

Ref<NSString> NSProcessInfo::processName() const {
  return NSString::stringWithLossyUTF8(ProcessIdentity::current().processName());
}

std::int32_t NSProcessInfo::processIdentifier() const {
  return ProcessIdentity::current().processIdentifier();
}

Ref<NSDictionary> NSProcessInfo::environment() const {
  auto result = NSMutableDictionary::dictionary();
  for (const std::string& variable : Environment::current().variables()) {
    const std::size_t separator = variable.find('=');
    if (separator == std::string::npos) continue;
    const std::string_view text = variable;
    auto name = NSString::stringWithLossyUTF8(text.substr(0, separator));
    if (result->objectForKey(name)) continue;
    result->setObjectForKey(NSString::stringWithLossyUTF8(text.substr(separator + 1)), name);
  }
  return result->copy();
}

Ref<NSString> NSProcessInfo::globallyUniqueString() const {
  char suffix[48];
  std::snprintf(suffix, sizeof suffix, "-%d-%016llX", processIdentifier(),
                static_cast<unsigned long long>(nextSequenceNumber()));
  return NSString::stringWithUTF8(uuidString(randomUUID()) + suffix);
}

NSOperatingSystemVersion NSProcessInfo::operatingSystemVersion() const {
  return OperatingSystem::current().version();
}

bool NSProcessInfo::isOperatingSystemAtLeastVersion(NSOperatingSystemVersion version) const {
  return operatingSystemVersion() >= version;
}

bool NSProcessInfo::automaticTerminationSupportEnabled() const {
  return AutomaticTermination::current().isSupportEnabled();
}

void NSProcessInfo::setAutomaticTerminationSupportEnabled(bool enabled) {
  AutomaticTermination::current().setSupportEnabled(enabled);
}

void NSProcessInfo::disableAutomaticTermination(NSString* reason) {
  AutomaticTermination::current().disable(reason);
}

void NSProcessInfo::enableAutomaticTermination(NSString* reason) {
  AutomaticTermination::current().enable(reason);
}

}  // namespace kbx
