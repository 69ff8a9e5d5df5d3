#include "platform/text/FormatParser.h"

#include <climits>
#include <cstdlib>
#include <cstring>

#include "platform/text/StringBuilder.h"

namespace kbx {
namespace {

bool isOneOf(char16_t unit, const char* letters) {
  return unit != 0 && unit < 0x80 && std::strchr(letters, static_cast<char>(unit));
}

}  // namespace

std::int64_t Conversion::signExtended(std::uint64_t word) const noexcept {
  const unsigned shift = 64U - bits;
  return static_cast<std::int64_t>(word << shift) >> shift;
}

std::uint64_t Conversion::zeroExtended(std::uint64_t word) const noexcept {
  const unsigned shift = 64U - bits;
  return word << shift >> shift;
}

void Conversion::addFlag(char flag) {
  if (flags.find(flag) == std::string::npos) flags += flag;
}

char16_t FormatParser::unit() const {
  return _at < length() ? _format->characterAtIndex(_at) : u'\0';
}

bool FormatParser::skip(char16_t wanted) {
  if (_at >= length() || unit() != wanted) return false;
  ++_at;
  return true;
}

std::optional<int> FormatParser::digits() {
  if (unit() < '0' || unit() > '9') return std::nullopt;
  int value = 0;
  for (; unit() >= '0' && unit() <= '9'; ++_at)
    if (value < 1000000) value = value * 10 + (unit() - '0');
  return value;
}

/// The n of "n$", or 0 where there is none.
std::size_t FormatParser::position() {
  const std::size_t start = _at;
  const auto number = digits();
  if (number && *number > 0 && skip('$')) return static_cast<std::size_t>(*number);
  _at = start;
  return 0;
}

void FormatParser::readFlags(Conversion& conversion) {
  for (; isOneOf(unit(), "-+ #0'"); ++_at) conversion.addFlag(static_cast<char>(unit()));
}

void FormatParser::readSize(Conversion& conversion, const Number& number) {
  if (skip('*')) {
    const int width = number(position());
    if (width < 0) conversion.addFlag('-');
    conversion.width = width < -INT_MAX ? INT_MAX : std::abs(width);
  } else if (auto width = digits()) {
    conversion.width = *width;
  }
  if (!skip('.')) return;
  conversion.precision = skip('*') ? number(position()) : digits().value_or(0);
}

void FormatParser::readLength(Conversion& conversion) {
  if (skip('h')) {
    conversion.bits = skip('h') ? 8 : 16;
  } else if (isOneOf(unit(), "lqjztL")) {
    conversion.bits = 64;
    while (isOneOf(unit(), "lqjztL")) ++_at;
  }
}

std::optional<Conversion> FormatParser::readConversion(const Number& number) {
  Conversion conversion;
  conversion.position = position();
  readFlags(conversion);
  readSize(conversion, number);
  readLength(conversion);
  if (!isOneOf(unit(), "@dDiuUoOxXcCsSpfFeEgGaA")) return std::nullopt;
  conversion.letter = static_cast<char>(unit());
  ++_at;
  // The old capital forms name long integers.
  if (isOneOf(static_cast<char16_t>(conversion.letter), "DUO")) {
    conversion.letter = static_cast<char>(conversion.letter | 0x20);
    conversion.bits = 64;
  }
  return conversion;
}

std::optional<FormatPiece> FormatParser::next(const Number& number) {
  if (_at >= length()) return std::nullopt;
  StringBuilder literal;
  while (_at < length()) {
    const std::size_t start = _at;
    while (_at < length() && unit() != '%') ++_at;
    literal.append(_format->substringWithRange({start, _at - start}));
    if (!skip('%')) break;
    if (skip('%')) {
      literal.append("%");
    } else if (auto conversion = readConversion(number)) {
      return FormatPiece{literal.take(), conversion};
    } else if (_at < length()) {
      ++_at;  // no conversion has this letter: nothing is printed for it
    }
  }
  return FormatPiece{literal.take(), std::nullopt};
}

}  // namespace kbx
