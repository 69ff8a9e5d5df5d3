#include "platform/preferences/NSUserDefaults.h"

#include "platform/objects/NSClass.h"
#include "platform/objects/NSNumber.h"

namespace kbx {

KBX_CLASS(NSUserDefaults)

namespace {

class NoPreferences final : public Preferences {
  Ref<NSDictionary> domain(NSString*) override { return nullptr; }
};

}  // namespace

Preferences::~Preferences() = default;

KBX_SERVICE(Preferences, NoPreferences)

NSUserDefaults* NSUserDefaults::standardUserDefaults() {
  static auto* const defaults = new NSUserDefaults;
  return defaults;
}

Ref<NSObject> NSUserDefaults::objectForKey(NSString* key) const {
  Ref<NSDictionary> values = Preferences::current().domain("ferncase"_ns);
  return values ? values->objectForKey(key) : nullptr;
}

bool NSUserDefaults::boolForKey(NSString* key) const {
  Ref<NSObject> value = objectForKey(key);
  if (auto* number = cast<NSNumber>(value)) return number->boolValue();
  auto* text = cast<NSString>(value);
  return text && text->boolValue();
}

}  // namespace kbx
