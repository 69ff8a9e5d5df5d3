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
  if (!text) return *this;
  text->visitUnits([this](auto units) {
    if constexpr (sizeof(units[0]) == 1)
      append(std::string_view(units.data(), units.size()));
    else
      append(std::u16string_view(units.data(), units.size()));
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
  widen();
  _wide.append(units);
  return *this;
}

StringBuilder& StringBuilder::appendUnit(char16_t unit) {
  const char byte = static_cast<char>(unit);
  return unit < 0x80 && !_isWide ? append(std::string_view(&byte, 1))
                                 : append(std::u16string_view(&unit, 1));
}

Ref<NSString> StringBuilder::take() {
  Ref<NSString> text =
      _isWide ? NSString::stringWithUTF16(_wide) : NSString::stringByTakingUTF8(std::move(_ascii));
  *this = StringBuilder();
  return text;
}

}  // namespace kbx
