// NSClass: the object that stands for a class, with the method table behind dynamic calls.
#pragma once

#include <concepts>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/objects/NSObject.h"

namespace kbx {

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
};

/// A class or a metaclass. Immortal. Its tables are guarded by one lock for all classes.
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
/// arguments  the address of each argument after self and selector, as many as the types name
/// result     where to store the result, or nullptr to drop it; an object result is stored into
///            the Ref<NSObject> found there
///
/// Raises NSInvalidArgumentException when there are more or fewer arguments than the types name.
KBX_PLATFORM void invoke(NSObject* self, const Method& method, void* result,
                         std::span<void* const> arguments);

/// The object that a dynamic call without arguments answers; absent when the receiver is absent.
/// (performSelector:)
///
/// Raises NSInvalidArgumentException when the receiver does not answer the selector, or when the
/// method takes arguments. A method whose result is no object gives an absent result.
KBX_PLATFORM Ref<NSObject> performSelector(NSObject* receiver, SEL selector);

/// Enters a member function of a C++ class into a method table. False when the class itself already
/// defines the selector.
///
/// Parameters and results may be integers and enumerations of 32 or 64 bits, double, bool (a BOOL,
/// "c"), selectors and object pointers; results also Ref<T> and void.
template <auto Member>
bool addMethod(NSClass* target, const char* selector);

// ---- How a member function becomes an IMP ------------------------------------------------

namespace detail {

template <class T>
concept ObjectPointer =
    std::is_pointer_v<T> && std::derived_from<std::remove_cv_t<std::remove_pointer_t<T>>, NSObject>;
template <class T>
concept ObjectHandle = requires(T ref) {
  ref.leak();
};
/// What a C call passes in a register of its own; smaller integers and float would be promoted.
template <class T>
concept WholeNumber = (std::integral<T> || std::is_enum_v<T>)&&(sizeof(T) == 4 || sizeof(T) == 8);

template <class T>
constexpr const char* encoding() {
  if constexpr (std::is_void_v<T>) {
    return "v";
  } else if constexpr (std::is_same_v<T, bool>) {
    return "c";
  } else if constexpr (ObjectPointer<T> || ObjectHandle<T>) {
    return "@";
  } else if constexpr (std::is_same_v<T, SEL>) {
    return ":";
  } else if constexpr (std::is_same_v<T, double>) {
    return "d";
  } else {
    static_assert(WholeNumber<T>, "a type that no dynamic call passes");
    constexpr bool isSigned = [] {
      if constexpr (std::is_enum_v<T>)
        return std::is_signed_v<std::underlying_type_t<T>>;
      else
        return std::is_signed_v<T>;
    }();
    return sizeof(T) == 8 ? (isSigned ? "q" : "Q") : (isSigned ? "i" : "I");
  }
}

/// What travels through the C call for a T: objects as NSObject*, bool as a signed byte.
template <class T>
using Abi = std::conditional_t<std::is_same_v<T, bool>, signed char,
                               std::conditional_t<std::is_pointer_v<T>, NSObject*, T>>;

template <class R>
auto toAbi(R value) {
  if constexpr (ObjectHandle<R>)
    return static_cast<NSObject*>(value.leak());
  else if constexpr (ObjectPointer<R>)
    return Ref<NSObject>(const_cast<std::remove_const_t<std::remove_pointer_t<R>>*>(value)).leak();
  else
    return static_cast<Abi<R>>(value);
}

template <class C, class R, class... A>
struct MemberOf {
  template <auto Member>
  static auto call(NSObject* self, SEL, Abi<A>... arguments) {
    auto run = [&]() -> R {
      return (static_cast<C*>(self)->*Member)(static_cast<A>(arguments)...);
    };
    if constexpr (std::is_void_v<R>)
      run();
    else
      return toAbi(run());
  }
  static std::string types() { return (std::string(encoding<R>()) + "@:" + ... + encoding<A>()); }
};

template <class M>
struct Signature;
template <class C, class R, class... A>
struct Signature<R (C::*)(A...)> : MemberOf<C, R, A...> {};
template <class C, class R, class... A>
struct Signature<R (C::*)(A...) const> : MemberOf<C, R, A...> {};
template <class C, class R, class... A>
struct Signature<R (C::*)(A...) noexcept> : MemberOf<C, R, A...> {};
template <class C, class R, class... A>
struct Signature<R (C::*)(A...) const noexcept> : MemberOf<C, R, A...> {};

}  // namespace detail

template <auto Member>
bool addMethod(NSClass* target, const char* selector) {
  using S = detail::Signature<decltype(Member)>;
  return target->addMethod(SEL(selector), reinterpret_cast<IMP>(&S::template call<Member>),
                           S::types());
}

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
