#include "platform/objects/NSNumber.h"

#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <string>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSString.h"
#include "platform/objects/RealText.h"

namespace kbx {

KBX_CLASS(NSNumber)
KBX_ADOPTS(NSNumber, NSCoding)

namespace {

// Numbers and texts are asked for plain values without a look at their class.
[[maybe_unused]] const bool answersValues =
    addMethod<&NSNumber::boolValue>(NSNumber::classObject(), "boolValue") &&
    addMethod<&NSNumber::integerValue>(NSNumber::classObject(), "integerValue") &&
    addMethod<&NSNumber::doubleValue>(NSNumber::classObject(), "doubleValue");

/// A whole number of 65 bits, which holds every integer of either sign.
struct Whole {
  std::uint64_t word;
  bool isNegative;

  friend bool operator==(const Whole&, const Whole&) = default;
};

/// Absent when the number has a fraction or more digits than an integer can have.
std::optional<Whole> whole(const NSNumber& number) {
  if (number.kind() == NSNumber::Kind::Real) {
    const double value = number.doubleValue();
    if (!(value >= -0x1p63 && value < 0x1p64) || value != std::floor(value)) return std::nullopt;
    if (value >= 0) return Whole{static_cast<std::uint64_t>(value), false};
  }
  const bool isUnsigned = number.kind() == NSNumber::Kind::Unsigned;
  return Whole{static_cast<std::uint64_t>(number.integerValue()),
               !isUnsigned && number.integerValue() < 0};
}

}  // namespace

Ref<NSNumber> NSNumber::numberWithBool(bool value) {
  static auto* const yes = new NSNumber(Kind::Boolean, {.integer = 1});
  static auto* const no = new NSNumber(Kind::Boolean, {.integer = 0});
  return value ? yes : no;
}

Ref<NSNumber> NSNumber::numberWithInteger(std::int64_t value) {
  return Ref<NSNumber>::adopt(new NSNumber(Kind::Signed, {.integer = value}));
}

Ref<NSNumber> NSNumber::numberWithUnsignedInteger(std::uint64_t value) {
  return Ref<NSNumber>::adopt(new NSNumber(Kind::Unsigned, {.natural = value}));
}

Ref<NSNumber> NSNumber::numberWithDouble(double value) {
  return Ref<NSNumber>::adopt(new NSNumber(Kind::Real, {.real = value}));
}

bool NSNumber::boolValue() const noexcept {
  return _kind == Kind::Real ? _value.real != 0 : _value.integer != 0;
}

std::int64_t NSNumber::integerValue() const noexcept {
  if (_kind != Kind::Real) return _value.integer;
  using Limits = std::numeric_limits<std::int64_t>;
  if (std::isnan(_value.real)) return 0;
  if (_value.real >= 0x1p63) return Limits::max();
  if (_value.real < -0x1p63) return Limits::min();
  return static_cast<std::int64_t>(_value.real);
}

std::uint64_t NSNumber::unsignedIntegerValue() const noexcept {
  if (_kind != Kind::Real) return _value.natural;
  if (!(_value.real > 0)) return 0;
  if (_value.real >= 0x1p64) return std::numeric_limits<std::uint64_t>::max();
  return static_cast<std::uint64_t>(_value.real);
}

double NSNumber::doubleValue() const noexcept {
  switch (_kind) {
    case Kind::Real:
      return _value.real;
    case Kind::Unsigned:
      return static_cast<double>(_value.natural);
    default:
      return static_cast<double>(_value.integer);
  }
}

Ref<NSString> NSNumber::description() const {
  return NSString::stringByTakingUTF8(_kind == Kind::Real       ? realText(_value.real)
                                      : _kind == Kind::Unsigned ? std::to_string(_value.natural)
                                                                : std::to_string(_value.integer));
}

bool NSNumber::isEqual(NSObject* other) const {
  auto* number = cast<NSNumber>(other);
  if (!number) return false;
  const auto mine = whole(*this), theirs = whole(*number);
  // A comparison of doubles would take neighbours for the same where they have not enough bits.
  if (mine || theirs) return mine == theirs;
  return doubleValue() == number->doubleValue();
}

std::size_t NSNumber::hash() const {
  const auto value = whole(*this);
  return value ? std::hash<std::uint64_t>{}(value->word) : std::hash<double>{}(doubleValue());
}

}  // namespace kbx
