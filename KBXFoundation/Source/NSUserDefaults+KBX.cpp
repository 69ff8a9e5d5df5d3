#include "NSUserDefaults+KBX.h"

#include <type_traits>

#include "Assertions.h"
#include "platform/objects/NSClass.h"
#include "platform/preferences/CFPreferences.h"

namespace kbx {
namespace {

constexpr char kFile[] = "KBXFoundation/Source/NSUserDefaults+KBX";

/// The published place of a getter's precondition.
#define KEY_SITE(line, selector) \
  Site(kFile, line, defaults, selector, "-[NSUserDefaults(KBX) " selector "]")

/// What the value answers to the selector; the default when it does not answer it with a T.
template <class T>
T answerOf(NSObject* value, const char* selector, T defaultValue) {
  Method* method = value ? value->objectClass()->instanceMethod(SEL(selector)) : nullptr;
  if (!method || method->types != detail::encoding<T>() + std::string("@:")) return defaultValue;
  detail::Abi<T> answer{};
  invoke(value, *method, &answer, {});
  return static_cast<T>(answer);
}

}  // namespace

bool kbxBoolForKeyDomain(NSUserDefaults* defaults, NSString* key, NSString* domain,
                         bool defaultValue) {
  if (!defaults) return false;
  KBX_PRECONDITION(key, KEY_SITE(9, "kbxBoolForKey:domain:defaultValue:"));
  bool isValid = false;
  const bool value = CFPreferencesGetAppBooleanValue(key, domain, &isValid);
  return isValid ? value : defaultValue;
}

std::int64_t kbxIntegerForKeyDomain(NSUserDefaults* defaults, NSString* key, NSString* domain,
                                    std::int64_t defaultValue) {
  if (!defaults) return 0;
  KBX_PRECONDITION(key, KEY_SITE(21, "kbxIntegerForKey:domain:defaultValue:"));
  bool isValid = false;
  const std::int64_t value = CFPreferencesGetAppIntegerValue(key, domain, &isValid);
  return isValid ? value : defaultValue;
}

Ref<NSObject> kbxObjectForKeyDomain(NSUserDefaults* defaults, NSString* key, NSString* domain,
                                    NSObject* defaultValue) {
  if (!defaults) return nullptr;
  KBX_PRECONDITION(key, KEY_SITE(31, "kbxObjectForKey:domain:defaultValue:"));
  auto value = CFPreferencesCopyAppValue(key, domain);
  return value ? value : Ref<NSObject>(defaultValue);
}

Ref<NSObject> kbxObjectForKey(NSUserDefaults* defaults, NSString* key, NSObject* defaultValue) {
  if (!defaults) return nullptr;
  KBX_PRECONDITION(key, KEY_SITE(48, "kbxObjectForKey:defaultValue:"));
  auto value = defaults->objectForKey(key);
  return value ? value : Ref<NSObject>(defaultValue);
}

Ref<NSString> kbxStringForKey(NSUserDefaults* defaults, NSString* key, NSString* defaultValue) {
  if (!defaults) return nullptr;
  KBX_PRECONDITION(key, KEY_SITE(53, "kbxStringForKey:defaultValue:"));
  auto value = defaults->objectForKey(key);
  auto* text = cast<NSString>(value);
  return text ? text : defaultValue;
}

bool kbxBoolForKey(NSUserDefaults* defaults, NSString* key, bool defaultValue) {
  if (!defaults) return false;
  KBX_PRECONDITION(key, KEY_SITE(59, "kbxBoolForKey:defaultValue:"));
  return answerOf(defaults->objectForKey(key), "boolValue", defaultValue);
}

std::int64_t kbxIntegerForKey(NSUserDefaults* defaults, NSString* key, std::int64_t defaultValue) {
  if (!defaults) return 0;
  KBX_PRECONDITION(key, KEY_SITE(68, "kbxIntegerForKey:defaultValue:"));
  return answerOf(defaults->objectForKey(key), "integerValue", defaultValue);
}

double kbxDoubleForKey(NSUserDefaults* defaults, NSString* key, double defaultValue) {
  if (!defaults) return 0;
  KBX_PRECONDITION(key, KEY_SITE(77, "kbxDoubleForKey:defaultValue:"));
  return answerOf(defaults->objectForKey(key), "doubleValue", defaultValue);
}

NSSize kbxSizeForKey(NSUserDefaults* defaults, NSString* key, NSSize defaultValue) {
  // The getter of texts requires the key.
  return NSSizeFromString(kbxStringForKey(defaults, key, NSStringFromSize(defaultValue)));
}

}  // namespace kbx
