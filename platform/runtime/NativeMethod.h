// NativeMethod: C++ functions as methods that are called by selector. Comes with NSClass.h.
#pragma once

#include <string>
#include <type_traits>

#include "platform/objects/NSClass.h"
#include "platform/runtime/TypeEncodings.h"

namespace kbx {

/// Enters a member function, or a function with the receiver as its first parameter, into a method
/// table. False when the class itself already defines the selector.
///
/// target    the class; for a class method its metaclass, with a function on NSClass*
/// selector  with its colons, as many as there are further parameters
///
/// Parameters and results may be numbers and enumerations, bool (a BOOL, "c"), text as a C string,
/// selectors, classes, object pointers, ranges, points, sizes, rectangles and any other pointer
/// ("^v"); results also Ref<T> and void.
template <auto Function>
bool addMethod(NSClass* target, const char* selector);

// ---- How a function becomes an IMP -------------------------------------------------------

namespace detail {

/// What travels through the C call for a T: objects as NSObject*, bool as a signed byte.
template <class T>
using Abi =
    std::conditional_t<std::is_same_v<T, bool>, signed char,
                       std::conditional_t<ClassPointer<T>, NSClass*,
                                          std::conditional_t<ObjectPointer<T>, NSObject*, T>>>;

template <class R>
auto toAbi(R value) {
  if constexpr (ObjectHandle<R>)
    return static_cast<NSObject*>(value.leak());
  else if constexpr (ClassPointer<R>)
    return const_cast<NSClass*>(value);
  else if constexpr (ObjectPointer<R>)
    return Ref<NSObject>(const_cast<std::remove_const_t<std::remove_pointer_t<R>>*>(value)).leak();
  else
    return static_cast<Abi<R>>(value);
}

template <class C, class R, class... A>
struct FunctionOf {
  template <auto Function>
  static auto call(NSObject* self, SEL, Abi<A>... arguments) {
    auto run = [&]() -> R {
      auto* receiver = static_cast<C*>(self);
      if constexpr (std::is_member_function_pointer_v<decltype(Function)>)
        return (receiver->*Function)(static_cast<A>(arguments)...);
      else
        return Function(receiver, static_cast<A>(arguments)...);
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
struct Signature<R (C::*)(A...)> : FunctionOf<C, R, A...> {};
template <class C, class R, class... A>
struct Signature<R (C::*)(A...) const> : FunctionOf<C, R, A...> {};
template <class C, class R, class... A>
struct Signature<R (C::*)(A...) noexcept> : FunctionOf<C, R, A...> {};
template <class C, class R, class... A>
struct Signature<R (C::*)(A...) const noexcept> : FunctionOf<C, R, A...> {};
template <class C, class R, class... A>
struct Signature<R (*)(C*, A...)> : FunctionOf<C, R, A...> {};
template <class C, class R, class... A>
struct Signature<R (*)(C*, A...) noexcept> : FunctionOf<C, R, A...> {};

}  // namespace detail

template <auto Function>
bool addMethod(NSClass* target, const char* selector) {
  using S = detail::Signature<decltype(Function)>;
  return target->addMethod(SEL(selector), reinterpret_cast<IMP>(&S::template call<Function>),
                           S::types());
}

}  // namespace kbx
