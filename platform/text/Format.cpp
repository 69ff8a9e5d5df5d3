#include "platform/text/Format.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "platform/objects/NSObject.h"
#include "platform/text/FormatParser.h"
#include "platform/text/PlainLocale.h"
#include "platform/text/StringBuilder.h"

namespace kbx {
namespace {

/// The largest width or precision that is honoured: a format must not ask for gigabytes.
constexpr int kWidest = 4096;

// The format of a number is put together here from parts that were checked.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

/// What snprintf() makes of the value and a format of this length modifier.
template <class Value>
std::string printed(const Conversion& conversion, const char* modifier, Value value) {
  std::string spec = "%" + conversion.flags;
  if (conversion.width >= 0) spec += std::to_string(std::min(conversion.width, kWidest));
  if (conversion.precision >= 0)
    spec += "." + std::to_string(std::min(conversion.precision, kWidest));
  spec += std::string(modifier) + conversion.letter;
  const int size = std::snprintf(nullptr, 0, spec.c_str(), value);
  std::string text(static_cast<std::size_t>(std::max(0, size)), '\0');
  std::snprintf(text.data(), text.size() + 1, spec.c_str(), value);
  return text;
}

#pragma GCC diagnostic pop

std::string realText(const Conversion& conversion, const FormatArgument* argument) {
  const long double value = argument ? argument->real() : 0.0L;
  // Hexadecimal digits of the two types differ although the values do not.
  const bool isHexadecimal = conversion.letter == 'a' || conversion.letter == 'A';
  const bool isDouble = std::isnan(value) || static_cast<double>(value) == value;
  const PlainLocale plain;
  return isHexadecimal && isDouble ? printed(conversion, "", static_cast<double>(value))
                                   : printed(conversion, "L", value);
}

std::string numberText(const Conversion& conversion, const FormatArgument* argument) {
  if (std::strchr("fFeEgGaA", conversion.letter)) return realText(conversion, argument);
  const std::uint64_t word = argument ? argument->word() : 0;
  if (conversion.letter == 'd' || conversion.letter == 'i')
    return printed(conversion, "ll", static_cast<long long>(conversion.signExtended(word)));
  return printed(conversion, "ll", static_cast<unsigned long long>(conversion.zeroExtended(word)));
}

std::string pointerText(const FormatArgument* argument) {
  std::uint64_t address = argument ? argument->word() : 0;
  if (argument && argument->pointer())
    address = reinterpret_cast<std::uintptr_t>(argument->pointer());
  char text[32];
  std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(address));
  return text;
}

/// Text padded to the width in units.
void appendPadded(StringBuilder& out, const Conversion& conversion, NSString* text) {
  const std::size_t width = static_cast<std::size_t>(std::clamp(conversion.width, 0, kWidest));
  const std::string padding(width > text->length() ? width - text->length() : 0, ' ');
  const bool isLeft = conversion.flags.find('-') != std::string::npos;
  if (!isLeft) out.append(padding);
  out.append(text);
  if (isLeft) out.append(padding);
}

/// Text cut to the precision and padded to the width, both in units.
void appendText(StringBuilder& out, const Conversion& conversion, Ref<NSString> text) {
  if (conversion.precision >= 0 && text->length() > static_cast<std::size_t>(conversion.precision))
    text = text->substringToIndex(static_cast<std::size_t>(conversion.precision));
  appendPadded(out, conversion, text);
}

Ref<NSString> characterText(const Conversion& conversion, const FormatArgument* argument) {
  const std::uint64_t word = argument ? argument->word() : 0;
  const auto unit = static_cast<char16_t>(conversion.letter == 'c' ? word & 0xFF : word);
  return unit ? NSString::stringWithUTF16({&unit, 1}) : NSString::string();
}

/// How many characters stand before the terminating zero, which a text may lack when there is a
/// precision.
template <class Character>
std::size_t lengthOf(const Conversion& conversion, const Character* text) {
  const std::size_t most =
      conversion.precision >= 0 ? static_cast<std::size_t>(conversion.precision) : SIZE_MAX;
  std::size_t length = 0;
  while (length < most && text[length]) ++length;
  return length;
}

Ref<NSString> cText(const Conversion& conversion, const FormatArgument* argument) {
  const char* text = argument ? argument->text() : nullptr;
  if (!text) return "(null)"_ns;
  return NSString::stringWithLossyUTF8({text, lengthOf(conversion, text)});
}

Ref<NSString> unitsText(const Conversion& conversion, const FormatArgument* argument) {
  const char16_t* units = argument ? argument->units() : nullptr;
  if (!units) return "(null)"_ns;
  return NSString::stringWithUTF16({units, lengthOf(conversion, units)});
}

void appendConversion(StringBuilder& out, const Conversion& conversion,
                      const FormatArgument* argument) {
  switch (conversion.letter) {
    case '@':
      return appendText(out, conversion, descriptionOf(argument ? argument->object() : nullptr));
    case 's':
      return appendText(out, conversion, cText(conversion, argument));
    case 'S':
      return appendText(out, conversion, unitsText(conversion, argument));
    case 'c':
    case 'C':
      return appendPadded(out, conversion, characterText(conversion, argument));
    case 'p':
      return appendPadded(out, conversion, NSString::stringWithUTF8(pointerText(argument)));
    default:
      out.append(numberText(conversion, argument));
  }
}

}  // namespace

std::uint64_t FormatArgument::word() const noexcept {
  return _kind == Kind::Signed || _kind == Kind::Unsigned ? _unsigned : 0;
}

long double FormatArgument::real() const noexcept { return _kind == Kind::Real ? _real : 0; }

const char* FormatArgument::text() const noexcept {
  return _kind == Kind::Text ? static_cast<const char*>(_pointer) : nullptr;
}

const char16_t* FormatArgument::units() const noexcept {
  return _kind == Kind::Units ? static_cast<const char16_t*>(_pointer) : nullptr;
}

NSObject* FormatArgument::object() const noexcept {
  return _kind == Kind::Object ? static_cast<NSObject*>(const_cast<void*>(_pointer)) : nullptr;
}

const void* FormatArgument::pointer() const noexcept {
  return _kind == Kind::Signed || _kind == Kind::Unsigned || _kind == Kind::Real ? nullptr
                                                                                 : _pointer;
}

Ref<NSString> stringWithFormatArguments(NSString* format, FormatArguments arguments) {
  StringBuilder out;
  std::size_t next = 0;
  auto argumentAt = [&](std::size_t index) {
    return index < arguments.size() ? &arguments[index] : nullptr;
  };
  auto number = [&](std::size_t position) {
    const FormatArgument* argument = argumentAt(position ? position - 1 : next++);
    return argument ? static_cast<int>(argument->word()) : 0;
  };
  FormatParser parser(format);
  while (auto piece = parser.next(number)) {
    out.append(piece->literal);
    if (!piece->conversion) continue;
    const Conversion& conversion = *piece->conversion;
    appendConversion(out, conversion,
                     argumentAt(conversion.position ? conversion.position - 1 : next++));
  }
  return out.take();
}

}  // namespace kbx
