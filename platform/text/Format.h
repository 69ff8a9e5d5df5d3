// Format strings: the platform's string formatting, printf's conversions and "%@" for objects.
#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "platform/Export.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// One argument of a format string, as its C++ type says what it is.
class KBX_PLATFORM FormatArgument {
 public:
  enum class Kind : std::uint8_t { Signed, Unsigned, Real, Text, Units, Object, Pointer };

  template <std::signed_integral T>
  FormatArgument(T value) : _kind(Kind::Signed), _signed(value) {}
  template <std::unsigned_integral T>
  FormatArgument(T value) : _kind(Kind::Unsigned), _unsigned(value) {}
  template <class T>
  requires std::is_enum_v<T> FormatArgument(T value)
      : FormatArgument(static_cast<std::underlying_type_t<T>>(value)) {}
  FormatArgument(double value) : _kind(Kind::Real), _real(value) {}
  FormatArgument(long double value) : _kind(Kind::Real), _real(value) {}
  /// UTF-8 for "%s", not copied; null prints as "(null)".
  FormatArgument(const char* text) : _kind(Kind::Text), _pointer(text) {}
  FormatArgument(const std::string& text) : FormatArgument(text.c_str()) {}
  /// UTF-16 up to a zero for "%S", not copied; null prints as "(null)".
  FormatArgument(const char16_t* units) : _kind(Kind::Units), _pointer(units) {}
  FormatArgument(NSObject* object) : _kind(Kind::Object), _pointer(object) {}
  template <class T>
  FormatArgument(const Ref<T>& object) : FormatArgument(static_cast<NSObject*>(object.get())) {}
  /// An absent object, for "%@".
  FormatArgument(std::nullptr_t) : _kind(Kind::Object), _pointer(nullptr) {}
  FormatArgument(const void* pointer) : _kind(Kind::Pointer), _pointer(pointer) {}

  Kind kind() const noexcept { return _kind; }
  /// An integer's bits; 0 for every other kind.
  std::uint64_t word() const noexcept;
  /// A real number; 0 for every other kind.
  long double real() const noexcept;
  /// The text of "%s", or nullptr.
  const char* text() const noexcept;
  /// The text of "%S", or nullptr.
  const char16_t* units() const noexcept;
  /// The object of "%@", or nullptr.
  NSObject* object() const noexcept;
  /// Where a text, an object or anything else lies; nullptr for numbers.
  const void* pointer() const noexcept;

 private:
  Kind _kind;
  union {
    std::int64_t _signed;
    std::uint64_t _unsigned;
    long double _real;
    const void* _pointer;
  };
};

/// The arguments of one format string: a view, valid while the call lasts.
using FormatArguments = std::span<const FormatArgument>;

/// The format with its arguments filled in. (initWithFormat:arguments:)
///
/// Understands "%@" (an object's description; "(null)" when absent), d i u o x X c C s S p f F e E
/// g G a A and %%, the flags, widths, precisions and "*" of printf, the length modifiers hh h l ll
/// q j z t L, and "%2$@" and "%*2$d" positions. An integer is cut to the width that the length
/// modifier names, "%c" to 8 bits (a character of Latin 1), "%C" to 16; a zero character adds
/// nothing. "%p" of a null pointer is "0x0". "%s" reads UTF-8, in which malformed sequences become
/// U+FFFD. Widths and precisions are honoured up to 4096; the locale plays no part.
///
/// No format and no argument is wrong: a conversion without an argument, or with one of another
/// kind, prints zero, "(null)" or "0x0"; what is no conversion prints nothing.
KBX_PLATFORM Ref<NSString> stringWithFormatArguments(NSString* format, FormatArguments arguments);

template <class... Arguments>
Ref<NSString> stringWithFormat(NSString* format, const Arguments&... arguments) {
  if constexpr (sizeof...(arguments) == 0) {
    return stringWithFormatArguments(format, {});
  } else {
    const FormatArgument list[] = {FormatArgument(arguments)...};
    return stringWithFormatArguments(format, list);
  }
}

/// The text that "%@" prints: the description, or "(null)" for an absent object. Never absent.
KBX_PLATFORM Ref<NSString> descriptionOf(NSObject* object);

}  // namespace kbx
