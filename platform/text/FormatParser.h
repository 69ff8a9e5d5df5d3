// FormatParser: cuts a format string into literal text and conversions.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/objects/NSString.h"

namespace kbx {

/// One "%…" of a format string.
struct Conversion {
  std::string flags;         // of "-+ #0'", each at most once
  int width = -1;            // -1: none given
  int precision = -1;        // -1: none given
  std::uint8_t bits = 32;    // what the length modifier says of an integer
  std::size_t position = 0;  // the n of "%n$", counted from 1; 0: the next argument
  char letter = 0;

  void addFlag(char flag);
  std::int64_t signExtended(std::uint64_t word) const noexcept;
  std::uint64_t zeroExtended(std::uint64_t word) const noexcept;
};

/// Literal text and the conversion behind it; the last piece may have none.
struct FormatPiece {
  Ref<NSString> literal;
  std::optional<Conversion> conversion;
};

class FormatParser {
 public:
  /// format  borrowed while the parser lives; absent is empty
  explicit FormatParser(NSString* format) : _format(format) {}

  /// What a "*" stands for: the argument at a position counted from 1, or (0) the next one.
  using Number = std::function<int(std::size_t position)>;

  /// The next piece, or nothing at the end. `number` answers each "*", in order.
  std::optional<FormatPiece> next(const Number& number);

 private:
  char16_t unit() const;
  bool skip(char16_t wanted);
  std::optional<int> digits();
  std::size_t position();
  void readFlags(Conversion& conversion);
  void readSize(Conversion& conversion, const Number& number);
  void readLength(Conversion& conversion);
  std::optional<Conversion> readConversion(const Number& number);
  std::size_t length() const { return _format ? _format->length() : 0; }

  NSString* _format;
  std::size_t _at = 0;
};

}  // namespace kbx
