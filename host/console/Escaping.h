// Escaping: writing text so that nothing in it can drive a terminal or fake a line.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "host/console/Output.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// Controls (C0, DEL, C1), separators that some programs take for line breaks, formatting
/// characters that turn the direction of text around or hide it, and what is no character.
/// Surrogates are no subject here.
constexpr bool isUnsafeUnit(char16_t unit) {
  if (unit < 0xA0) return unit < 0x20 || unit >= 0x7F;
  return unit == 0x061C || unit == 0x200E || unit == 0x200F || (unit >= 0x2028 && unit <= 0x202E) ||
         (unit >= 0x2066 && unit <= 0x206F) || unit == 0xFEFF ||
         (unit >= 0xFFF9 && unit <= 0xFFFB) || unit >= 0xFFFE;
}

/// Writes \t, \n, \r or \u and four hexadecimal digits.
void writeUnitEscape(Output& output, char16_t unit);

/// Which characters writeUTF8() hands over: the unsafe ones and, of ASCII, those of `more`.
class SpecialCharacters {
 public:
  constexpr explicit SpecialCharacters(std::string_view more) {
    for (char16_t unit = 0; unit < 0x80; ++unit)
      _mayBegin[unit] =
          isUnsafeUnit(unit) || more.find(static_cast<char>(unit)) != std::string_view::npos;
    for (char16_t unit = 0x80; unit != 0; ++unit)
      if (isUnsafeUnit(unit)) _mayBegin[unit < 0x800 ? 0xC0 | unit >> 6 : 0xE0 | unit >> 12] = true;
  }
  constexpr bool contains(char16_t unit) const {
    return unit < 0x80 ? _mayBegin[unit] : isUnsafeUnit(unit);
  }
  /// Whether the UTF-8 of one of them begins with the byte.
  constexpr bool mayBeginWith(char byte) const {
    return _mayBegin[static_cast<std::uint8_t>(byte)];
  }

 private:
  std::array<bool, 0x100> _mayBegin{};
};

/// Writes the text as UTF-8, but hands special characters and lone surrogates to
/// `escape(unit, next)`; next is the unit behind it, 0 at the end of the text. Text that is kept in
/// UTF-8 is not converted.
template <class Escape>
void writeUTF8(Output& output, NSString* text, const SpecialCharacters& special, Escape escape);

/// Writes the text on one line, with unsafe characters, lone surrogates and backslashes escaped.
void writeOnOneLine(Output& output, NSString* text);
/// The same for a path in bytes; a byte that belongs to no character shows as \xE9.
void writePath(Output& output, std::string_view path);
/// What writePath() writes.
std::string shownPath(std::string_view path);

// ---- How the text is walked -----------------------------------------------------------------

namespace detail {

/// UTF-8 that is put together a unit at a time.
class UTF8Chunk {
 public:
  explicit UTF8Chunk(Output& output) : _output(output) {}
  ~UTF8Chunk() { flush(); }
  UTF8Chunk(const UTF8Chunk&) = delete;
  UTF8Chunk& operator=(const UTF8Chunk&) = delete;

  void append(char32_t character) {
    if (_size > sizeof _bytes - 4) flush();
    if (character < 0x80) return put(character);
    if (character < 0x800) {
      put(0xC0 | character >> 6);
    } else if (character < 0x10000) {
      put(0xE0 | character >> 12);
      put(0x80 | (character >> 6 & 0x3F));
    } else {
      put(0xF0 | character >> 18);
      put(0x80 | (character >> 12 & 0x3F));
      put(0x80 | (character >> 6 & 0x3F));
    }
    put(0x80 | (character & 0x3F));
  }
  void flush() {
    _output.write({_bytes, _size});
    _size = 0;
  }

 private:
  void put(char32_t byte) { _bytes[_size++] = static_cast<char>(byte); }

  Output& _output;
  std::size_t _size = 0;
  char _bytes[1024];
};

constexpr std::size_t sequenceLength(char lead) {
  const auto byte = static_cast<std::uint8_t>(lead);
  return byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

/// The first unit of valid UTF-8; 0 of none.
constexpr char16_t firstUnit(std::string_view bytes) {
  if (bytes.empty()) return 0;
  const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(bytes[i]); };
  const std::size_t length = sequenceLength(bytes[0]);
  if (length == 1) return byte(0);
  char32_t character = byte(0) & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) character = character << 6 | (byte(i) & 0x3Fu);
  return static_cast<char16_t>(length < 4 ? character : 0xD7C0 + (character >> 10));
}

/// How many bytes at the start can begin no special character.
inline std::size_t plainLength(std::string_view bytes, const SpecialCharacters& special) {
  constexpr std::size_t kStep = 8;  // looked up together, with one branch for all
  std::size_t i = 0;
  for (; i + kStep <= bytes.size(); i += kStep) {
    bool isSpecial = false;
    for (std::size_t j = i; j < i + kStep; ++j) isSpecial |= special.mayBeginWith(bytes[j]);
    if (isSpecial) break;
  }
  while (i < bytes.size() && !special.mayBeginWith(bytes[i])) ++i;
  return i;
}

template <class Escape>
void writeBytes(Output& output, std::string_view bytes, const SpecialCharacters& special,
                Escape& escape) {
  std::size_t run = 0, i = 0;
  while ((i += plainLength(bytes.substr(i), special)) < bytes.size()) {
    const char16_t unit = firstUnit(bytes.substr(i));
    const std::size_t length = sequenceLength(bytes[i]);
    if (special.contains(unit)) {
      output.write(bytes.substr(run, i - run));
      run = i + length;
      escape(unit, firstUnit(bytes.substr(run)));
    }
    i += length;
  }
  output.write(bytes.substr(run));
}

template <class Escape>
void writeUnits(Output& output, std::span<const char> ascii, const SpecialCharacters& special,
                Escape& escape) {
  writeBytes(output, {ascii.data(), ascii.size()}, special, escape);
}

constexpr bool isLead(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool isTrail(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

template <class Escape>
void writeUnits(Output& output, std::span<const char16_t> units, const SpecialCharacters& special,
                Escape& escape) {
  UTF8Chunk chunk(output);
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t unit = units[i];
    const bool isSurrogate = isLead(unit) || isTrail(unit);
    if (isLead(unit) && i + 1 < units.size() && isTrail(units[i + 1])) {
      chunk.append(0x10000 + ((unit & char32_t{0x3FF}) << 10) + (units[++i] & char32_t{0x3FF}));
    } else if (isSurrogate || special.contains(unit)) {
      chunk.flush();
      escape(unit, i + 1 < units.size() ? units[i + 1] : u'\0');
    } else {
      chunk.append(unit);
    }
  }
}

}  // namespace detail

template <class Escape>
void writeUTF8(Output& output, NSString* text, const SpecialCharacters& special, Escape escape) {
  if (const auto bytes = text->keptUTF8())
    return detail::writeBytes(output, *bytes, special, escape);
  text->visitUnits([&](auto units) { detail::writeUnits(output, units, special, escape); });
}

}  // namespace kbx
