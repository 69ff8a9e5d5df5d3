// TokenBuffer: a token that grows by characters, up to a length.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

#include "host/tokenizer/Characters.h"

namespace kbx {

/// Bytes in UTF-8, never more than `longest`. It is cut between characters.
template <std::size_t longest>
class TokenBuffer {
 public:
  bool isOpen() const noexcept { return _isOpen; }
  void open() noexcept {
    _isOpen = true;
    _wasCut = false;
    _length = 0;
    _last = 0;
  }
  void close() noexcept { _isOpen = false; }
  bool wasCut() const noexcept { return _wasCut; }
  std::string_view text() const noexcept { return {_bytes, _length}; }

  /// For who fills in ASCII by hand: room for `longest` bytes.
  char* bytes() noexcept { return _bytes; }
  void setLength(std::size_t length) noexcept {
    _length = length;
    _last = 0;
  }

  void append(char32_t character) noexcept {
    const std::size_t size = sizeOf(character);
    if (_wasCut || _length + size > longest) {
      _wasCut = true;
      return;
    }
    _lastStart = _length;
    _last = character;
    write(character, size);
  }

  void append(std::string_view text) noexcept {
    if (_wasCut || _length + text.size() > longest) {
      _wasCut = true;
      return;
    }
    std::memcpy(_bytes + _length, text.data(), text.size());
    _length += text.size();
    _last = 0;
  }

  /// Puts a mark into the character before it, where the two make one, or behind it.
  void appendMark(char32_t mark) noexcept {
    const char32_t whole = _last && !_wasCut ? composed(_last, mark) : 0;
    if (whole) _length = _lastStart;
    append(whole ? whole : mark);
  }

 private:
  static std::size_t sizeOf(char32_t character) noexcept {
    return character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
  }

  void write(char32_t character, std::size_t size) noexcept {
    char* at = _bytes + _length;
    _length += size;
    if (size == 1) {
      *at = static_cast<char>(character);
      return;
    }
    constexpr unsigned kLeads[] = {0, 0, 0xC0, 0xE0, 0xF0};
    for (std::size_t i = size - 1; i > 0; --i, character >>= 6)
      at[i] = static_cast<char>(0x80 | (character & 0x3F));
    *at = static_cast<char>(kLeads[size] | character);
  }

  char _bytes[longest];
  std::size_t _length = 0;
  std::size_t _lastStart = 0;  // of the last character
  char32_t _last = 0;          // 0 when it is of no interest
  bool _isOpen = false;
  bool _wasCut = false;
};

}  // namespace kbx
