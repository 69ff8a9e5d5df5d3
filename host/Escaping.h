// Escaping: writing text so that nothing in it can drive a terminal or fake a line.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "host/Output.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// Controls (C0, DEL, C1), separators that some programs take for line breaks, and formatting
/// characters that turn the direction of text around or hide it. Surrogates are no subject here.
constexpr bool isUnsafeUnit(char16_t unit) {
  if (unit < 0xA0) return unit < 0x20 || unit >= 0x7F;
  return unit == 0x061C || unit == 0x200E || unit == 0x200F || (unit >= 0x2028 && unit <= 0x202E) ||
         (unit >= 0x2066 && unit <= 0x206F) || unit == 0xFEFF || (unit >= 0xFFF9 && unit <= 0xFFFB);
}

/// Writes \t, \n, \r or \u and four hexadecimal digits.
void writeUnitEscape(Output& output, char16_t unit);

/// Which ASCII characters writeUTF8() hands over: the unsafe ones and those of `more`.
class SpecialASCII {
 public:
  constexpr explicit SpecialASCII(std::string_view more) {
    for (char16_t unit = 0; unit < _isSpecial.size(); ++unit)
      _isSpecial[unit] =
          isUnsafeUnit(unit) || more.find(static_cast<char>(unit)) != std::string_view::npos;
  }
  /// unit < 0x80
  constexpr bool contains(char16_t unit) const { return _isSpecial[unit]; }

 private:
  std::array<bool, 0x80> _isSpecial{};
};

/// Writes the text as UTF-8, but hands special characters of ASCII, other unsafe units and lone
/// surrogates to `escape(unit, next)`; next is the unit behind it, 0 at the end of the text.
template <class Escape>
void writeUTF8(Output& output, NSString* text, const SpecialASCII& special, Escape escape);

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

template <class Escape>
void writeUnits(Output& output, std::span<const char> units, const SpecialASCII& special,
                Escape& escape) {
  std::size_t run = 0;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const auto unit = static_cast<unsigned char>(units[i]);
    if (!special.contains(unit)) continue;
    output.write({units.data() + run, i - run});
    const bool isLast = i + 1 == units.size();
    escape(static_cast<char16_t>(unit), isLast ? u'\0' : static_cast<char16_t>(units[i + 1]));
    run = i + 1;
  }
  output.write({units.data() + run, units.size() - run});
}

constexpr bool isLead(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool isTrail(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

template <class Escape>
void writeUnits(Output& output, std::span<const char16_t> units, const SpecialASCII& special,
                Escape& escape) {
  UTF8Chunk chunk(output);
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t unit = units[i];
    const bool isSurrogate = isLead(unit) || isTrail(unit);
    if (isLead(unit) && i + 1 < units.size() && isTrail(units[i + 1])) {
      chunk.append(0x10000 + ((unit & char32_t{0x3FF}) << 10) + (units[++i] & char32_t{0x3FF}));
    } else if (isSurrogate || (unit < 0x80 ? special.contains(unit) : isUnsafeUnit(unit))) {
      chunk.flush();
      escape(unit, i + 1 < units.size() ? units[i + 1] : u'\0');
    } else {
      chunk.append(unit);
    }
  }
}

}  // namespace detail

template <class Escape>
void writeUTF8(Output& output, NSString* text, const SpecialASCII& special, Escape escape) {
  text->visitUnits([&](auto units) { detail::writeUnits(output, units, special, escape); });
}

}  // namespace kbx
