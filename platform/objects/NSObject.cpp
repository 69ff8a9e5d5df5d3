#include "platform/objects/NSObject.h"

#include <cstdio>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSString.h"

namespace kbx {

namespace {

// What answers no question about its class is no ordinary object; a root class that is not this
// one has to enter the method itself.
[[maybe_unused]] const bool answersItsKind =
    addMethod<&NSObject::isKindOfClass>(NSObject::classObject(), "isKindOfClass:");

}  // namespace

NSObject::~NSObject() = default;

NSClass* NSObject::classObject() {
  static NSClass* const object = NSClass::make("NSObject", nullptr);
  return object;
}

bool NSObject::isKindOfClass(const NSClass* wanted) const noexcept {
  for (const NSClass* c = objectClass(); c; c = c->superclass())
    if (c == wanted) return true;
  return false;
}

bool NSObject::respondsToSelector(SEL selector) const {
  return objectClass()->instanceMethod(selector) != nullptr;
}

bool NSObject::conformsToProtocol(std::string_view protocol) const {
  auto* ownClass = isClassObject() ? static_cast<const NSClass*>(this) : objectClass();
  return ownClass->adoptsProtocol(protocol);
}

Ref<NSString> NSObject::description() const {
  char address[32];
  std::snprintf(address, sizeof address, "%p", static_cast<const void*>(this));
  return NSString::stringWithUTF8("<" + objectClass()->name() + ": " + address + ">");
}

}  // namespace kbx
