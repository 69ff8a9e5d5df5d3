#include "platform/text/PercentEscapes.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <bitset>
#include <optional>
#include <string>

#include "platform/text/StringBuilder.h"

namespace kbx {
namespace {

using ASCIISet = std::bitset<128>;

ASCIISet setOf(std::string_view characters) {
  ASCIISet set;
  for (char c : characters) set.set(static_cast<unsigned char>(c));
  return set;
}

bool contains(NSString* characters, char32_t wanted) {
  return characters && characters->visitUnits([=](auto units) {
    for (std::size_t i = 0; i < units.size();) {
      UChar32 c;
      if constexpr (sizeof(units[0]) == 1)
        c = units[i++];
      else
        U16_NEXT(units, i, units.size(), c);
      if (static_cast<char32_t>(c) == wanted) return true;
    }
    return false;
  });
}

std::optional<unsigned> digitValue(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
  if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
  return std::nullopt;
}

/// The bytes of the escapes that follow each other from `at` on; absent when one is malformed.
template <class Units>
std::optional<std::string> readEscapes(Units units, std::size_t at) {
  std::string bytes;
  for (; at < units.size() && units[at] == '%'; at += 3) {
    if (units.size() - at < 3) return std::nullopt;
    const auto high = digitValue(static_cast<char16_t>(units[at + 1]));
    const auto low = digitValue(static_cast<char16_t>(units[at + 2]));
    if (!high || !low) return std::nullopt;
    bytes += static_cast<char>(*high << 4 | *low);
  }
  return bytes;
}

template <class Units>
void append(StringBuilder& builder, Units units) {
  builder.append(std::basic_string_view(units.data(), units.size()));
}

/// Appends what the escapes stand for, or the escapes themselves where they are to stay. False
/// when the bytes are not UTF-8.
template <class Units>
bool appendCharacters(StringBuilder& builder, Units escapes, const std::string& bytes,
                      NSString* toLeave) {
  const auto* source = reinterpret_cast<const std::uint8_t*>(bytes.data());
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t start = i;
    UChar32 c;
    U8_NEXT(source, i, bytes.size(), c);
    if (c < 0) return false;
    if (contains(toLeave, static_cast<char32_t>(c)))
      append(builder, escapes.subspan(3 * start, 3 * (i - start)));
    else
      builder.append(std::string_view(bytes).substr(start, i - start));
  }
  return true;
}

template <class Units>
Ref<NSString> replaceEscapes(Units units, NSString* toLeave) {
  StringBuilder builder;
  for (std::size_t i = 0; i < units.size();) {
    std::size_t plain = i;
    while (i < units.size() && units[i] != '%') ++i;
    append(builder, units.subspan(plain, i - plain));
    const auto bytes = readEscapes(units, i);
    if (!bytes) return nullptr;
    const auto escapes = units.subspan(i, 3 * bytes->size());
    if (!appendCharacters(builder, escapes, *bytes, toLeave)) return nullptr;
    i += escapes.size();
  }
  return builder.take();
}

void appendEscapes(std::string& text, std::string_view bytes) {
  constexpr char digits[] = "0123456789ABCDEF";
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += '%';
    text += digits[value >> 4];
    text += digits[value & 15];
  }
}

/// Escapes all but the set and what is in `toLeave`.
Ref<NSString> addEscapes(std::span<const char> units, const ASCIISet& plain, NSString*) {
  std::string text;
  text.reserve(units.size());
  for (const char c : units) {
    if (plain[static_cast<unsigned char>(c)])
      text += c;
    else
      appendEscapes(text, {&c, 1});
  }
  return NSString::stringByTakingUTF8(std::move(text));
}

Ref<NSString> addEscapes(std::span<const char16_t> units, const ASCIISet& plain,
                         NSString* toLeave) {
  std::string text;
  text.reserve(2 * units.size());
  for (std::size_t i = 0; i < units.size();) {
    UChar32 c;
    U16_NEXT(units, i, units.size(), c);
    if (U_IS_SURROGATE(c)) return nullptr;
    char bytes[U8_MAX_LENGTH];
    std::size_t size = 0;
    U8_APPEND_UNSAFE(bytes, size, c);
    const bool isPlain =
        c < 0x80 ? plain[static_cast<std::size_t>(c)] : contains(toLeave, static_cast<char32_t>(c));
    if (isPlain)
      text.append(bytes, size);
    else
      appendEscapes(text, {bytes, size});
  }
  return NSString::stringByTakingUTF8(std::move(text));
}

Ref<NSString> addEscapes(NSString* text, const ASCIISet& plain, NSString* toLeave) {
  return text->visitUnits([&](auto units) { return addEscapes(units, plain, toLeave); });
}

}  // namespace

Ref<NSString> stringByReplacingPercentEscapes(NSString* text, NSString* charactersToLeaveEscaped) {
  if (!text || !charactersToLeaveEscaped) return text;
  return text->visitUnits(
      [=](auto units) { return replaceEscapes(units, charactersToLeaveEscaped); });
}

Ref<NSString> stringByAddingPercentEscapes(NSString* text, NSString* charactersToLeaveUnescaped,
                                           NSString* legalURLCharactersToBeEscaped) {
  static const ASCIISet legal =
      setOf("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.!~*'()$&+,/:;=?@");
  if (!text) return nullptr;
  ASCIISet plain = legal;
  for (char32_t c = 0; c < plain.size(); ++c)
    plain[c] = contains(legal[c] ? legalURLCharactersToBeEscaped : charactersToLeaveUnescaped, c) !=
               legal[c];
  return addEscapes(text, plain, charactersToLeaveUnescaped);
}

Ref<NSString> stringByAddingPercentEncoding(NSString* text, std::string_view allowedCharacters) {
  return text ? addEscapes(text, setOf(allowedCharacters), nullptr) : nullptr;
}

}  // namespace kbx
