#include "platform/objects/NSObject.h"

#include <cstdio>
#include <utility>
#include <vector>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSString.h"

namespace kbx {

namespace {

// What answers no question about its class is no ordinary object; a root class that is not this
// one has to enter the method itself.
[[maybe_unused]] const bool answersItsKind =
    addMethod<&NSObject::isKindOfClass>(NSObject::classObject(), "isKindOfClass:");

// What every object can be asked for by selector.
[[maybe_unused]] const bool answersBasics =
    addMethod<&NSObject::description>(NSObject::classObject(), "description") &&
    addMethod<&NSObject::isEqual>(NSObject::classObject(), "isEqual:") &&
    addMethod<&NSObject::hash>(NSObject::classObject(), "hash") &&
    addMethod<&NSObject::respondsToSelector>(NSObject::classObject(), "respondsToSelector:");

/// How many objects may die inside one another's destructors.
constexpr unsigned kDeepest = 64;

/// The objects that are dying on a thread. The list exists while somebody waits.
struct Dying {
  unsigned depth = 0;
  std::vector<const NSObject*>* waiting = nullptr;
};

}  // namespace

NSObject::~NSObject() = default;

void NSObject::destroy() const noexcept {
  // Each object that dies asks for this: where a model spares the call that finds it, it is said.
  [[gnu::tls_model("initial-exec")]] thread_local constinit Dying dying;
  if (dying.depth == kDeepest) {
    if (!dying.waiting) dying.waiting = new std::vector<const NSObject*>;
    return dying.waiting->push_back(this);
  }
  ++dying.depth;
  delete this;
  // Only the outermost destruction gets here with depth 1, and takes those that had to wait.
  while (dying.depth == 1 && dying.waiting) {
    const NSObject* next = dying.waiting->back();
    dying.waiting->pop_back();
    if (dying.waiting->empty()) delete std::exchange(dying.waiting, nullptr);
    delete next;
  }
  --dying.depth;
}

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
  return NSString::stringWithLossyUTF8("<" + objectClass()->name() + ": " + address + ">");
}

}  // namespace kbx
