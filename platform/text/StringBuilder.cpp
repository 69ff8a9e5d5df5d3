#include "platform/text/StringBuilder.h"

#include <utility>

#include "platform/text/UTF8.h"

namespace kbx {

void StringBuilder::widen() {
  if (_isWide) return;
  _wide.assign(_ascii.begin(), _ascii.end());
  _ascii.clear();
  _isWide = true;
}

StringBuilder& StringBuilder::append(NSString* text) {
  return text ? append(*text, {0, text->length()}) : *this;
}

StringBuilder& StringBuilder::append(const NSString& text, NSRange range) {
  text.visitUnits([&](auto units) {
    const auto part = units.subspan(range.location, range.length);
    if constexpr (sizeof(units[0]) == 1)
      append(std::string_view(part.data(), part.size()));
    else
      append(std::u16string_view(part.data(), part.size()));
  });
  return *this;
}

StringBuilder& StringBuilder::append(std::string_view utf8) {
  if (asciiPrefixLength(utf8) < utf8.size())
    return append(std::u16string_view(utf16FromLossyUTF8(utf8)));
  if (_isWide)
    _wide.append(utf8.begin(), utf8.end());
  else
    _ascii.append(utf8);
  return *this;
}

StringBuilder& StringBuilder::append(std::u16string_view units) {
  if (!_isWide && asciiPrefixLength(units) == units.size()) {
    _ascii.append(units.begin(), units.end());
    return *this;
  }
  widen();
  _wide.append(units);
  return *this;
}

StringBuilder& StringBuilder::appendUnit(char16_t unit) {
  if (!_isWide && unit < 0x80) {
    _ascii.push_back(static_cast<char>(unit));
    return *this;
  }
  widen();
  _wide.push_back(unit);
  return *this;
}

Ref<NSString> StringBuilder::take() {
  StringBuilder taken = std::exchange(*this, StringBuilder());
  return taken._isWide ? NSString::stringByTakingUTF16(std::move(taken._wide))
                       : NSString::stringByTakingUTF8(std::move(taken._ascii));
}

}  // namespace kbx
