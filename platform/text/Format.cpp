#include "platform/text/Format.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>
#include <vector>

#include "platform/objects/NSObject.h"
#include "platform/text/FormatParser.h"
#include "platform/text/StringBuilder.h"

namespace kbx {
namespace {

/// The largest width or precision that is honoured: a format must not ask for gigabytes.
constexpr int kWidest = 4096;

// The format of a number is put together here from parts that were checked.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

std::string numberText(const Conversion& conversion, const FormatArgument* argument) {
  std::string spec = "%" + conversion.flags;
  if (conversion.width >= 0) spec += std::to_string(std::min(conversion.width, kWidest));
  if (conversion.precision >= 0)
    spec += "." + std::to_string(std::min(conversion.precision, kWidest));
  auto print = [&](auto value) {
    std::string text(
        static_cast<std::size_t>(std::max(0, std::snprintf(nullptr, 0, spec.c_str(), value))),
        '\0');
    std::snprintf(text.data(), text.size() + 1, spec.c_str(), value);
    return text;
  };
  if (std::strchr("fFeEgGaA", conversion.letter)) {
    spec += std::string("L") + conversion.letter;
    return print(argument ? argument->real() : 0.0L);
  }
  spec += std::string("ll") + conversion.letter;
  const std::uint64_t word = argument ? argument->word() : 0;
  const bool isSigned = conversion.letter == 'd' || conversion.letter == 'i';
  return isSigned ? print(static_cast<long long>(conversion.signExtended(word)))
                  : print(static_cast<unsigned long long>(conversion.zeroExtended(word)));
}

#pragma GCC diagnostic pop

std::string pointerText(const FormatArgument* argument) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%llx",
                argument ? static_cast<unsigned long long>(argument->word()) : 0ULL);
  return text;
}

/// Text cut to the precision and padded to the width, both in units.
void appendPadded(StringBuilder& out, const Conversion& conversion, Ref<NSString> text) {
  if (conversion.precision >= 0 && text->length() > static_cast<std::size_t>(conversion.precision))
    text = text->substringToIndex(static_cast<std::size_t>(conversion.precision));
  const std::size_t width = static_cast<std::size_t>(std::clamp(conversion.width, 0, kWidest));
  const std::string padding(width > text->length() ? width - text->length() : 0, ' ');
  const bool isLeft = conversion.flags.find('-') != std::string::npos;
  if (!isLeft) out.append(padding);
  out.append(text);
  if (isLeft) out.append(padding);
}

Ref<NSString> characterText(const FormatArgument* argument) {
  const auto unit = static_cast<char16_t>(argument ? argument->word() : 0);
  return unit ? NSString::stringWithUTF16({&unit, 1}) : NSString::string();
}

Ref<NSString> cText(const Conversion& conversion, const FormatArgument* argument) {
  const char* text = argument ? argument->text() : nullptr;
  if (!text) return "(null)"_ns;
  // A precision says that the text may lack its terminating zero.
  const std::size_t length = conversion.precision >= 0
                                 ? strnlen(text, static_cast<std::size_t>(conversion.precision))
                                 : std::strlen(text);
  return NSString::stringWithLossyUTF8({text, length});
}

void appendConversion(StringBuilder& out, const Conversion& conversion,
                      const FormatArgument* argument) {
  switch (conversion.letter) {
    case '@':
      return appendPadded(out, conversion, descriptionOf(argument ? argument->object() : nullptr));
    case 's':
      return appendPadded(out, conversion, cText(conversion, argument));
    case 'c':
    case 'C':
      return appendPadded(out, conversion, characterText(argument));
    case 'S':
      return appendPadded(out, conversion, "(null)"_ns);
    case 'p':
      return appendPadded(out, conversion, NSString::stringWithUTF8(pointerText(argument)));
    default:
      out.append(numberText(conversion, argument));
  }
}

}  // namespace

std::uint64_t FormatArgument::word() const noexcept {
  switch (_kind) {
    case Kind::Signed:
    case Kind::Unsigned:
      return _unsigned;
    case Kind::Real:
      return 0;
    default:
      return reinterpret_cast<std::uintptr_t>(_pointer);
  }
}

long double FormatArgument::real() const noexcept { return _kind == Kind::Real ? _real : 0; }

const char* FormatArgument::text() const noexcept {
  return _kind == Kind::Text ? static_cast<const char*>(_pointer) : nullptr;
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
  auto nextNumber = [&] {
    const FormatArgument* argument = argumentAt(next++);
    return argument ? static_cast<int>(argument->word()) : 0;
  };
  FormatParser parser(format);
  while (auto piece = parser.next(nextNumber)) {
    out.append(piece->literal);
    if (!piece->conversion) continue;
    const Conversion& conversion = *piece->conversion;
    appendConversion(out, conversion,
                     argumentAt(conversion.position ? conversion.position - 1 : next++));
  }
  return out.take();
}

}  // namespace kbx
