#include "NSProcessInfo+KBX.h"

#include <cmath>
#include <cstring>
#include <string>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/preferences/NSUserDefaults.h"
#include "platform/system/NSProcessInfo.h"
#include "platform/system/ResourceLimits.h"
#include "platform/system/SystemControl.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

std::int32_t gestaltNumber(OSType selector) {
  std::int32_t number = 0;
  Gestalt(selector, &number);  // a failing query leaves the zero
  return number;
}

std::int64_t numberAt(NSArray* components, std::size_t index) {
  return cast<NSString>(components->objectAtIndex(index))->integerValue();
}

Ref<NSError> versionError(NSString* string) {
  Ref<NSString> description = stringWithFormat("Error parsing OS version: %@"_ns, string);
  return NSError::errorWithDomain(
      NSOSStatusErrorDomain(), -50,
      NSDictionary::dictionaryWithPairs({{NSLocalizedDescriptionKey(), description}}));
}

template <class Number>
Number sysctlNumber(NSString* key) {
  Number number = 0;
  std::size_t length = sizeof number;
  const auto name = key ? key->UTF8String() : std::nullopt;
  if (!name || sysctlbyname(name->c_str(), &number, &length, nullptr, 0) != 0) return 0;
  return number;
}

// What is looked up by selector: the class alone answers, never an instance.
signed char isMacAppStoreVersion(NSObject*, SEL) { return kbxIsMacAppStoreVersion(); }
signed char isInAppSandbox(NSObject*, SEL) { return kbxIsInAppSandbox(); }

bool addClassMethod(const char* selector, signed char (*body)(NSObject*, SEL)) {
  NSClass* metaclass = NSProcessInfo::classObject()->objectClass();
  return metaclass->addMethod(SEL(selector), reinterpret_cast<IMP>(body), "c@:");
}

[[maybe_unused]] const bool entersMethods =
    addClassMethod("kbxIsMacAppStoreVersion", &isMacAppStoreVersion) &&
    addClassMethod("kbxIsInAppSandbox", &isInAppSandbox);

}  // namespace

// The floor and "greater than" here, neither of them for the beta below: both are wanted.
bool kbxIsMacOSAtLeast10_8() { return std::floor(NSFoundationVersionNumber()) > 833.1; }
bool kbxIsMacOSAtLeast10_9() { return std::floor(NSFoundationVersionNumber()) > 945.0; }
bool kbxIsMacOSAtLeast10_10() { return std::floor(NSFoundationVersionNumber()) > 1056.0; }
bool kbxIsMacOSAtLeast10_11() { return kbxIsOperatingSystemAtLeastVersion({10, 11, 0}); }
bool kbxIsMacOSAtLeast10_12() { return kbxIsOperatingSystemAtLeastVersion({10, 12, 0}); }
bool kbxIsMacOSAtLeast10_12_2() { return kbxIsOperatingSystemAtLeastVersion({10, 12, 2}); }
bool kbxIsMacOSAtLeast10_13() { return kbxIsOperatingSystemAtLeastVersion({10, 13, 0}); }
bool kbxIsMacOSAtLeast10_13_2() { return kbxIsOperatingSystemAtLeastVersion({10, 13, 2}); }
bool kbxIsMacOSAtLeast10_14() { return kbxIsOperatingSystemAtLeastVersion({10, 14, 0}); }
bool kbxIsMacOSAtLeast10_15() { return kbxIsOperatingSystemAtLeastVersion({10, 15, 0}); }
bool kbxIsMacOSAtLeast10_15_4() { return kbxIsOperatingSystemAtLeastVersion({10, 15, 4}); }
bool kbxIsMacOSAtLeast10_15DeveloperBeta5() { return NSFoundationVersionNumber() >= 1665.1; }

bool kbxIsOperatingSystemAtLeastVersion(NSOperatingSystemVersion version) {
  return kbxIsMacOSAtLeast10_10() &&
         NSProcessInfo::processInfo()->isOperatingSystemAtLeastVersion(version);
}

Ref<NSString> kbxOSVersionString() {
  return stringWithFormat("%d.%d.%d"_ns, gestaltNumber(gestaltSystemVersionMajor),
                          gestaltNumber(gestaltSystemVersionMinor),
                          gestaltNumber(gestaltSystemVersionBugFix));
}

bool kbxGetOperatingSystemVersion(NSOperatingSystemVersion* version, NSString* fromString,
                                  Ref<NSError>* error) {
  Ref<NSArray> components =
      version && fromString ? fromString->componentsSeparatedByString("."_ns) : nullptr;
  const std::size_t count = components ? components->count() : 0;
  if (count < 2 || count > 3) {
    if (error) *error = versionError(fromString);
    return false;
  }
  *version = {numberAt(components, 0), numberAt(components, 1),
              count == 3 ? numberAt(components, 2) : 0};
  return true;
}

std::uint64_t kbxMaximumOpenFilesCount() {
  const auto limit = ResourceLimits::current().openFiles();
  return limit ? limit->soft : 0;
}

void kbxSetMaximumOpenFilesCount(std::uint64_t count) {
  ResourceLimits::current().setOpenFiles({count, count});
}

bool kbxIsMacAppStoreVersion() { return false; }

bool kbxIsInAppSandbox() {
  return NSUserDefaults::standardUserDefaults()->boolForKey("KBXAppSandbox"_ns);
}

bool kbxIsInXcode() {
  auto environment = NSProcessInfo::processInfo()->environment();
  return environment->objectForKey("__XCODE_BUILT_PRODUCTS_DIR_PATHS"_ns) != nullptr;
}

void kbxPreventPartialLaunching() {
  NSProcessInfo* info = NSProcessInfo::processInfo();
  info->setAutomaticTerminationSupportEnabled(true);
  info->disableAutomaticTermination("need to receive IPC"_ns);
}

Ref<NSString> kbxHardwareModel() {
  auto model = kbxSysctlStringForKey("hw.model"_ns);
  return model ? model : Ref<NSString>("unknown"_ns);
}

std::int32_t kbxMaxPhysicalProcessorCount() {
  return kbxSysctlInt32ForKey("hw.physicalcpu_max"_ns);
}

std::int64_t kbxMaxProcessorFrequency() { return kbxSysctlInt64ForKey("hw.cpufrequency_max"_ns); }

Ref<NSString> kbxSysctlStringForKey(NSString* key) {
  const auto name = key ? key->UTF8String() : std::nullopt;
  std::size_t size = 0;
  if (!name || sysctlbyname(name->c_str(), nullptr, &size, nullptr, 0) != 0 || size == 0)
    return nullptr;
  std::string value(size, '\0');
  if (sysctlbyname(name->c_str(), value.data(), &size, nullptr, 0) != 0) return nullptr;
  return NSString::stringWithUTF8String(value.c_str());
}

std::int32_t kbxSysctlInt32ForKey(NSString* key) { return sysctlNumber<std::int32_t>(key); }
std::int64_t kbxSysctlInt64ForKey(NSString* key) { return sysctlNumber<std::int64_t>(key); }

}  // namespace kbx
