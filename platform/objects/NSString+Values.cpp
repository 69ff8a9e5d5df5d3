// NSString: the numbers and truth values that a text begins with.
#include <charconv>
#include <cstdlib>
#include <limits>
#include <string>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSString.h"
#include "platform/text/PlainLocale.h"

namespace kbx {
namespace {

// Numbers and texts are asked for plain values without a look at their class.
[[maybe_unused]] const bool answersValues =
    addMethod<&NSString::boolValue>(NSString::classObject(), "boolValue") &&
    addMethod<&NSString::integerValue>(NSString::classObject(), "integerValue") &&
    addMethod<&NSString::doubleValue>(NSString::classObject(), "doubleValue");

bool isBlank(char16_t unit) { return unit == ' ' || (unit >= '\t' && unit <= '\r'); }
bool isDigit(char16_t unit) { return unit >= '0' && unit <= '9'; }

template <class Units>
std::size_t skipBlanks(Units units) {
  std::size_t i = 0;
  while (i < units.size() && isBlank(static_cast<char16_t>(units[i]))) ++i;
  return i;
}

/// The leading integer, clamped to [minimum, maximum].
std::int64_t leadingInteger(const NSString* text, std::int64_t minimum, std::int64_t maximum) {
  return text->visitUnits([=](auto units) {
    std::size_t i = skipBlanks(units);
    bool isNegative = i < units.size() && units[i] == '-';
    if (i < units.size() && (units[i] == '-' || units[i] == '+')) ++i;
    std::int64_t value = 0;  // kept negative, because the negative range is the larger one
    for (; i < units.size() && isDigit(static_cast<char16_t>(units[i])); ++i) {
      if (__builtin_mul_overflow(value, std::int64_t{10}, &value) ||
          __builtin_sub_overflow(value, std::int64_t{units[i]} - '0', &value))
        return isNegative ? minimum : maximum;
    }
    if (isNegative) return value < minimum ? minimum : value;
    return value < -maximum ? maximum : -value;
  });
}

/// The decimal number that the units begin with; `text` is the sign in front of it.
template <class Units>
double decimal(std::string text, Units units) {
  for (auto unit : units) {  // up to the first unit that no number has
    const auto wide = static_cast<char16_t>(unit);
    const bool isSignOfExponent = (wide == '-' || wide == '+') && !text.empty();
    if (!isDigit(wide) && wide != '.' && (wide | 0x20) != 'e' && !isSignOfExponent) break;
    text += static_cast<char>(unit);
  }
  double value = 0;
  if (std::from_chars(text.data(), text.data() + text.size(), value).ec !=
      std::errc::result_out_of_range)
    return value;
  // Too large or too small: the C library tells infinity and zero apart.
  const PlainLocale plain;
  return std::strtod(text.c_str(), nullptr);
}

}  // namespace

std::int64_t NSString::integerValue() const {
  using Limits = std::numeric_limits<std::int64_t>;
  return leadingInteger(this, Limits::min(), Limits::max());
}

std::int32_t NSString::intValue() const {
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(leadingInteger(this, Limits::min(), Limits::max()));
}

bool NSString::boolValue() const {
  return visitUnits([](auto units) {
    const std::size_t i = skipBlanks(units);
    if (i == units.size()) return false;
    auto unit = static_cast<char16_t>(units[i]);
    return unit == 'Y' || unit == 'y' || unit == 'T' || unit == 't' || (unit >= '1' && unit <= '9');
  });
}

double NSString::doubleValue() const {
  return visitUnits([](auto units) {
    std::size_t i = skipBlanks(units);
    const bool isNegative = i < units.size() && units[i] == '-';
    if (i < units.size() && (units[i] == '-' || units[i] == '+')) ++i;
    return decimal(isNegative ? "-" : "", units.subspan(i));
  });
}

}  // namespace kbx
