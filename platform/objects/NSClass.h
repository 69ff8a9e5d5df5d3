// NSClass: the object that stands for a class, with the method table behind dynamic calls.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/objects/NSObject.h"

namespace kbx {

class NSMethodSignature;

/// A selector: an interned name such as "kbxParent" or "kbxChild:". Equal names give equal
/// selectors, so selectors compare with ==. A default-made selector is absent.
class KBX_PLATFORM SEL {
 public:
  constexpr SEL() = default;
  explicit SEL(std::string_view name);
  /// The name, or nullptr when absent.
  const char* name() const noexcept { return _name; }
  explicit operator bool() const noexcept { return _name; }
  friend bool operator==(SEL, SEL) = default;

 private:
  const char* _name = nullptr;
};

/// The body of a method, called as (NSObject* self, SEL selector, arguments...). An object result
/// comes with a reference that the caller takes over.
using IMP = void (*)();

struct Method {
  SEL selector;
  IMP implementation;
  std::string types;  // result, self, selector, arguments: "c@:@" takes one object, gives a BOOL
  NSMethodSignature* signature = nullptr;  // made of the types; absent where they cannot be read
};

/// A class or a metaclass. Immortal, and so are its methods. The tables are guarded by one lock for
/// all classes; each thread remembers what it found, so that most look-ups take no lock.
///
/// The metaclass of the root class has the root class as its superclass, so what every object
/// answers, every class answers too.
class KBX_PLATFORM NSClass final : public NSObject {
 public:
  using Superclass = NSObject;
  static NSClass* classObject();

  /// Makes a class with its metaclass and enters it into the registry by name. The first class of
  /// a name keeps it: a second one, from another module, is a class of its own, but is not found
  /// by name.
  static NSClass* make(const char* name, NSClass* superclass);
  /// The registered class of that name, or nullptr.
  static NSClass* named(std::string_view name);

  const std::string& name() const noexcept { return _name; }
  NSClass* superclass() const noexcept { return _superclass; }
  NSClass* objectClass() const noexcept override { return _metaclass ? _metaclass : classObject(); }
  bool isClassObject() const noexcept override { return true; }
  Ref<NSString> description() const override;

  /// Records that the class, and so each of its subclasses, adopts a protocol.
  void adoptProtocol(std::string_view protocol);
  /// Whether the class or one of its superclasses adopts the protocol.
  bool adoptsProtocol(std::string_view protocol) const;

  /// The method that instances use for the selector, inherited ones included, or nullptr.
  Method* instanceMethod(SEL selector);
  /// False, and no change, when this class itself already defines the selector.
  bool addMethod(SEL selector, IMP implementation, std::string types);
  /// Nothing when one of them is absent. (method_exchangeImplementations)
  static void exchangeImplementations(Method* first, Method* second);
  /// The selectors that this class itself defines, in the order of their definition.
  std::vector<SEL> directSelectors();

 private:
  NSClass(const char* name, NSClass* superclass, NSClass* metaclass);
  Method* directMethod(SEL selector);
  Method* searchMethod(SEL selector);

  const std::string _name;
  NSClass* _superclass;       // set once, before anybody else sees the class
  NSClass* const _metaclass;  // nullptr in a metaclass
  std::vector<std::string> _protocols;
  std::vector<std::unique_ptr<Method>> _methods;
};

/// A class met as an object. Its own class is a metaclass, so the plain test would say no.
template <>
inline NSClass* cast<NSClass>(NSObject* object) noexcept {
  return object && object->isClassObject() ? static_cast<NSClass*>(object) : nullptr;
}

/// Calls a method with typed buffers.
///
/// result     where to store the result, or nullptr to drop it; an object result is stored into
///            the Ref<NSObject> found there
/// arguments  the address of each argument after self and selector, as many as the types name; an
///            array is what lies at its address, and the method gets that address
///
/// Raises NSInvalidArgumentException when there are more or fewer arguments than the types name,
/// and when the types cannot be read. Exceptions of the method pass.
KBX_PLATFORM void invoke(NSObject* self, const Method& method, void* result,
                         std::span<void* const> arguments);

/// The object that a dynamic call without arguments answers; absent when the receiver is absent.
/// (performSelector:)
///
/// Raises NSInvalidArgumentException when the receiver does not answer the selector, or when the
/// method takes arguments. A method whose result is no object gives an absent result.
KBX_PLATFORM Ref<NSObject> performSelector(NSObject* receiver, SEL selector);

/// The same with one object as the argument, which may be absent. (performSelector:withObject:)
///
/// A method without arguments is called without it. Raises for any other argument than one object
/// or class.
KBX_PLATFORM Ref<NSObject> performSelector(NSObject* receiver, SEL selector, NSObject* argument);

}  // namespace kbx

/// Defines the class object declared by KBX_OBJECT and registers the class at start-up.
#define KBX_CLASS(Type)                                                                 \
  ::kbx::NSClass* Type::classObject() {                                                 \
    static auto* const object = ::kbx::NSClass::make(#Type, Superclass::classObject()); \
    return object;                                                                      \
  }                                                                                     \
  [[maybe_unused]] static auto* const registered##Type = Type::classObject();

/// Records at start-up that a class adopts a protocol; behind KBX_CLASS, once for each protocol.
#define KBX_ADOPTS(Type, Protocol)                            \
  [[maybe_unused]] static const bool adopts##Protocol##Type = \
      (Type::classObject()->adoptProtocol(#Protocol), true);

#include "platform/runtime/NativeMethod.h"  // addMethod()
