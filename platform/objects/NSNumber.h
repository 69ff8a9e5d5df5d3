// NSNumber: a boolean, an integer or a floating-point number as an object.
#pragma once

#include <cstdint>

#include "platform/objects/NSObject.h"

namespace kbx {

/// An immutable number. Numbers of different kinds are equal when their values are.
class KBX_PLATFORM NSNumber final : public NSObject {
  KBX_OBJECT(NSNumber, NSObject)
 public:
  enum class Kind : std::uint8_t { Boolean, Signed, Unsigned, Real };

  /// The two booleans are one object each.
  static Ref<NSNumber> numberWithBool(bool value);
  static Ref<NSNumber> numberWithInteger(std::int64_t value);
  static Ref<NSNumber> numberWithUnsignedInteger(std::uint64_t value);
  static Ref<NSNumber> numberWithDouble(double value);

  Kind kind() const noexcept { return _kind; }
  /// A boolean, not a number that happens to be 0 or 1.
  bool isBoolean() const noexcept { return _kind == Kind::Boolean; }
  /// Not zero.
  bool boolValue() const noexcept;
  /// The whole part; a number beyond the range is wrapped (integers) or clamped (real numbers).
  std::int64_t integerValue() const noexcept;
  std::uint64_t unsignedIntegerValue() const noexcept;
  double doubleValue() const noexcept;

  /// Decimal digits; booleans as 1 and 0; real numbers in the shortest form that reads back the
  /// same.
  Ref<NSString> description() const override;
  bool isEqual(NSObject* other) const override;
  std::size_t hash() const override;

 private:
  union Value {
    std::int64_t integer;
    std::uint64_t natural;
    double real;
  };
  NSNumber(Kind kind, Value value) noexcept : _kind(kind), _value(value) {}

  const Kind _kind;
  const Value _value;
};

}  // namespace kbx
