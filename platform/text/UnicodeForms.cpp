#include "platform/text/UnicodeForms.h"

#include <unicode/utf16.h>

#include <array>
#include <charconv>
#include <cstdint>

namespace kbx {
namespace {

/// The number in the first `size` bytes.
std::uint32_t readUnit(const char* bytes, std::size_t size, std::endian order) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t place = order == std::endian::big ? i : size - 1 - i;
    value = value << 8 | static_cast<unsigned char>(bytes[place]);
  }
  return value;
}

void appendUnit(std::string& bytes, std::uint32_t value, std::size_t size, std::endian order) {
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t place = order == std::endian::big ? size - 1 - i : i;
    bytes += static_cast<char>(value >> (8 * place));
  }
}

void appendScalar(std::u16string& units, std::uint32_t scalar) {
  if (scalar > 0xFFFF) units += static_cast<char16_t>(U16_LEAD(scalar));
  units += static_cast<char16_t>(scalar > 0xFFFF ? U16_TRAIL(scalar) : scalar);
}

void appendEscape(std::string& bytes, char16_t unit) {
  constexpr char digits[] = "0123456789abcdef";
  const bool isHexadecimal = unit > 0xFF;
  bytes += isHexadecimal ? "\\u" : "\\";
  for (int shift = isHexadecimal ? 12 : 6; shift >= 0; shift -= isHexadecimal ? 4 : 3)
    bytes += digits[unit >> shift & (isHexadecimal ? 15 : 7)];
}

/// The unit of `count` digits at the start, or nothing.
std::optional<char16_t> readDigits(std::string_view text, std::size_t count, int base) {
  text = text.substr(0, count);
  std::uint32_t value = 0;
  auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  const bool isWhole = text.size() == count && end == text.data() + count;
  if (failure != std::errc() || !isWhole) return std::nullopt;
  return static_cast<char16_t>(value);
}

struct Escape {
  char16_t unit;
  std::size_t length;  // in bytes, the backslash not counted
};

/// The escape behind a backslash, or nothing.
std::optional<Escape> readEscape(std::string_view text) {
  if (text.starts_with('\\')) return Escape{u'\\', 1};
  if (text.starts_with('u')) {
    auto unit = readDigits(text.substr(1), 4, 16);
    return unit ? std::optional(Escape{*unit, 5}) : std::nullopt;
  }
  auto unit = readDigits(text, 3, 8);
  return unit && *unit <= 0xFF ? std::optional(Escape{*unit, 3}) : std::nullopt;
}

}  // namespace

std::optional<std::u16string> decodeUTF16(std::string_view bytes, std::endian order) {
  if (bytes.size() % 2 != 0) return std::nullopt;
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i)
    units[i] = static_cast<char16_t>(readUnit(bytes.data() + 2 * i, 2, order));
  return units;
}

std::string encodeUTF16(std::u16string_view units, std::endian order) {
  std::string bytes;
  bytes.reserve(2 * units.size());
  for (char16_t unit : units) appendUnit(bytes, unit, 2, order);
  return bytes;
}

std::optional<std::u16string> decodeUTF32(std::string_view bytes, std::endian order) {
  if (bytes.size() % 4 != 0) return std::nullopt;
  std::u16string units;
  units.reserve(bytes.size() / 4);
  for (std::size_t i = 0; i < bytes.size(); i += 4) {
    const std::uint32_t value = readUnit(bytes.data() + i, 4, order);
    if (value > 0x10FFFF || U_IS_SURROGATE(value)) return std::nullopt;
    appendScalar(units, value);
  }
  return units;
}

std::optional<std::string> encodeUTF32(std::u16string_view units, std::endian order, bool isLossy) {
  std::string bytes;
  bytes.reserve(4 * units.size());
  for (std::size_t i = 0; i < units.size();) {
    UChar32 c;
    U16_NEXT(units, i, units.size(), c);
    if (U_IS_SURROGATE(c) && !isLossy) return std::nullopt;
    appendUnit(bytes, U_IS_SURROGATE(c) ? 0xFFFD : static_cast<std::uint32_t>(c), 4, order);
  }
  return bytes;
}

std::optional<std::endian> byteOrderMark(std::string_view bytes, std::size_t unitSize) {
  if (bytes.size() < unitSize) return std::nullopt;
  for (std::endian order : {std::endian::little, std::endian::big})
    if (readUnit(bytes.data(), unitSize, order) == 0xFEFF) return order;
  return std::nullopt;
}

std::string encodeNonLossyASCII(std::u16string_view units) {
  std::string bytes;
  bytes.reserve(units.size());
  for (char16_t unit : units) {
    if (unit >= 0x80)
      appendEscape(bytes, unit);
    else
      bytes.append(unit == u'\\' ? 2 : 1, static_cast<char>(unit));
  }
  return bytes;
}

std::optional<std::u16string> decodeNonLossyASCII(std::string_view bytes) {
  std::u16string units;
  units.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size();) {
    const char byte = bytes[i++];
    if (static_cast<unsigned char>(byte) >= 0x80) return std::nullopt;
    if (byte != '\\') {
      units += static_cast<char16_t>(byte);
      continue;
    }
    auto escape = readEscape(bytes.substr(i));
    if (!escape) return std::nullopt;
    units += escape->unit;
    i += escape->length;
  }
  return units;
}

}  // namespace kbx
