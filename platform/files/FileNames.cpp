#include "platform/files/FileNames.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include "platform/text/UTF8.h"

namespace kbx {
namespace {

constexpr char16_t kEscape = 0xDC00;  // plus a byte of 0x80 to 0xFF

bool isEscapedByte(char16_t unit) { return unit >= kEscape + 0x80 && unit <= kEscape + 0xFF; }

std::optional<std::string> bytesOf(std::u16string_view units) {
  std::string bytes;
  for (std::size_t i = 0; i < units.size();) {
    std::size_t run = i;
    while (run < units.size() && !U16_IS_SURROGATE(units[run])) ++run;
    if (run < units.size() && U16_IS_LEAD(units[run])) {
      run += 2;  // a lead without a trail is refused by the conversion
    } else if (run == i) {
      if (!isEscapedByte(units[i])) return std::nullopt;
      bytes += static_cast<char>(units[i++] - kEscape);
      continue;
    }
    auto text = utf8FromUTF16(units.substr(i, run - i));
    if (!text) return std::nullopt;
    bytes += *text;
    i = run;
  }
  return bytes;
}

}  // namespace

Ref<NSString> stringWithFileSystemRepresentation(std::string_view bytes) {
  if (auto text = NSString::stringWithUTF8(bytes)) return text;
  std::u16string units;
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t start = i;
    UChar32 c;
    U8_NEXT(reinterpret_cast<const std::uint8_t*>(bytes.data()), i, bytes.size(), c);
    if (c < 0) {
      units += static_cast<char16_t>(kEscape + static_cast<unsigned char>(bytes[start]));
      i = start + 1;
    } else if (c > 0xFFFF) {
      units += static_cast<char16_t>(U16_LEAD(c));
      units += static_cast<char16_t>(U16_TRAIL(c));
    } else {
      units += static_cast<char16_t>(c);
    }
  }
  return NSString::stringWithUTF16(units);
}

std::optional<std::string> fileSystemRepresentation(NSString* text) {
  if (!text) return std::nullopt;
  auto bytes = text->UTF8String();
  if (!bytes) {
    bytes = text->visitUnits([](auto units) -> std::optional<std::string> {
      if constexpr (sizeof(units[0]) == 1)
        return std::nullopt;
      else
        return bytesOf({units.data(), units.size()});
    });
  }
  if (bytes && bytes->find('\0') != std::string::npos) return std::nullopt;
  return bytes;
}

}  // namespace kbx
