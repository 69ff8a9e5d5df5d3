// TypeEncodings: the type encoding of a C++ type that travels through dynamic calls.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <type_traits>

#include "platform/objects/NSObject.h"

struct OpaqueCFString;

namespace kbx {

struct NSPoint;
struct NSRange;
struct NSRect;
struct NSSize;

namespace detail {

/// What a pointer points to.
template <class T>
using Pointee = std::remove_cv_t<std::remove_pointer_t<T>>;

/// Text of the C border, whose structure is known to nobody.
template <class T>
concept CoreFoundationText = std::is_pointer_v<T> && std::same_as<Pointee<T>, OpaqueCFString>;
template <class T>
concept ObjectPointer =
    std::is_pointer_v<T> && !CoreFoundationText<T> && std::derived_from<Pointee<T>, NSObject>;
template <class T>
concept ClassPointer = std::is_pointer_v<T> && std::same_as<Pointee<T>, NSClass>;
template <class T>
concept ObjectHandle = requires(T ref) {
  ref.leak();
};
template <class T>
concept WholeNumber = std::integral<T> || std::is_enum_v<T>;

template <class T>
constexpr bool isSigned() {
  if constexpr (std::is_enum_v<T>)
    return std::is_signed_v<std::underlying_type_t<T>>;
  else
    return std::is_signed_v<T>;
}

/// Small letters for signed ones, capitals for unsigned ones; the size decides, not the name.
template <WholeNumber T>
constexpr const char* integerEncoding() {
  constexpr bool kSigned = isSigned<T>();
  if constexpr (sizeof(T) == 1) return kSigned ? "c" : "C";
  if constexpr (sizeof(T) == 2) return kSigned ? "s" : "S";
  if constexpr (sizeof(T) == 4) return kSigned ? "i" : "I";
  return kSigned ? "q" : "Q";
}

template <class T>
constexpr const char* realEncoding() {
  if constexpr (std::is_same_v<T, float>) return "f";
  if constexpr (std::is_same_v<T, double>) return "d";
  return "D";
}

template <class T>
constexpr const char* pointerEncoding() {
  if constexpr (std::is_same_v<T, char*>) return "*";
  if constexpr (std::is_same_v<T, const char*>) return "r*";
  if constexpr (std::is_same_v<T, const OpaqueCFString*>) return "r^{__CFString=}";
  if constexpr (std::is_same_v<T, OpaqueCFString*>) return "^{__CFString=}";
  return "^v";
}

template <class T>
constexpr const char* structureEncoding() {
  if constexpr (std::is_same_v<T, SEL>) return ":";
  if constexpr (std::is_same_v<T, NSRange>) return "{_NSRange=QQ}";
  if constexpr (std::is_same_v<T, NSPoint>) return "{CGPoint=dd}";
  if constexpr (std::is_same_v<T, NSSize>) return "{CGSize=dd}";
  if constexpr (std::is_same_v<T, NSRect>) return "{CGRect={CGPoint=dd}{CGSize=dd}}";
  return nullptr;
}

/// bool is a BOOL, a signed byte.
template <class T>
constexpr const char* encoding() {
  if constexpr (std::is_void_v<T>) {
    return "v";
  } else if constexpr (std::is_same_v<T, bool>) {
    return "c";
  } else if constexpr (ClassPointer<T>) {
    return "#";
  } else if constexpr (ObjectPointer<T> || ObjectHandle<T>) {
    return "@";
  } else if constexpr (std::is_pointer_v<T>) {
    return pointerEncoding<T>();
  } else if constexpr (std::is_floating_point_v<T>) {
    return realEncoding<T>();
  } else if constexpr (WholeNumber<T>) {
    return integerEncoding<T>();
  } else {
    static_assert(structureEncoding<T>() != nullptr, "a type that no dynamic call passes");
    return structureEncoding<T>();
  }
}

}  // namespace detail
}  // namespace kbx
