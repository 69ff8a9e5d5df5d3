#include "NSString+KBXFourCharCodes.h"

#include "Assertions.h"
#include "platform/objects/NSData.h"
#include "platform/text/StringEncoding.h"

namespace kbx {

Ref<NSString> kbxStringWithFourCharCode(OSType code) {
  if (code == 0) return kbxUnknownCode();
  const std::uint8_t bytes[] = {
      static_cast<std::uint8_t>(code >> 24), static_cast<std::uint8_t>(code >> 16),
      static_cast<std::uint8_t>(code >> 8), static_cast<std::uint8_t>(code)};
  return NSString::initWithData(NSData::dataWithBytes(bytes, sizeof bytes),
                                NSMacOSRomanStringEncoding);
}

OSType kbxFourCharCodeValue(NSString* string) {
  if (!string) return 0;
  KBX_PRECONDITION_TEXT(
      string->length() == 4, "[self length] == 4",
      Site("KBXFoundation/Source/NSString+KBXBasics", 608, string, "kbxFourCharCodeValue"));
  const Ref<NSData> data = string->dataUsingEncoding(NSMacOSRomanStringEncoding);
  if (!data || data->length() < 4) return 0;
  OSType code = 0;
  for (std::size_t i = 0; i < 4; ++i) code = code << 8 | data->bytes()[i];
  return code;
}

Ref<NSString> kbxUnknownCode() { return stringWithFormat("%c%c%c%c"_ns, '\0', '\0', '\0', '\0'); }

bool kbxIsUnknownCode(NSString* string) { return isEqual(string, kbxUnknownCode()); }

}  // namespace kbx
