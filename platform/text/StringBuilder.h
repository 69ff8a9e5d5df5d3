// StringBuilder: text put together piece by piece.
#pragma once

#include <string>
#include <string_view>

#include "platform/Export.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// Collects text and gives it away as one string. Stays in bytes while everything is ASCII, and
/// keeps lone surrogates, so a piece comes out as it went in. Belongs to one thread at a time.
class KBX_PLATFORM StringBuilder {
 public:
  /// An absent string adds nothing.
  StringBuilder& append(NSString* text);
  /// UTF-8; every malformed sequence adds U+FFFD.
  StringBuilder& append(std::string_view utf8);
  StringBuilder& append(std::u16string_view units);
  /// A part of a text. The range must lie inside it.
  StringBuilder& append(const NSString& text, NSRange range);
  StringBuilder& appendUnit(char16_t unit);

  bool isEmpty() const noexcept { return length() == 0; }
  /// In units.
  std::size_t length() const noexcept { return _isWide ? _wide.size() : _ascii.size(); }
  /// The text so far. The builder is empty afterwards.
  Ref<NSString> take();

 private:
  void widen();

  std::string _ascii;
  std::u16string _wide;
  bool _isWide = false;
};

}  // namespace kbx
