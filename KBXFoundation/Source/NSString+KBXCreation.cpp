#include "NSString+KBXCreation.h"

#include <string_view>

#include "NSError+KBX.h"
#include "platform/files/NSFileManager.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSNumber.h"
#include "platform/system/UUID.h"
#include "platform/text/Charsets.h"

namespace kbx {
namespace {

Ref<NSError> notDecodedError(NSData* data, NSStringEncoding encoding) {
  NSObject* const input = data ? static_cast<NSObject*>(data) : "<nil>"_ns;
  return KBXError1(
      kDataNotDecodedError,
      NSDictionary::dictionaryWithPairs(
          {{inputObjectErrorKey(), input},
           {stringEncodingErrorKey(), NSNumber::numberWithUnsignedInteger(encoding)},
           {NSLocalizedFailureReasonErrorKey(), "Error decoding data to string."_ns}}));
}

bool beginsWithUTF16Mark(NSData* data) {
  return data->view().starts_with("\xFE\xFF") || data->view().starts_with("\xFF\xFE");
}

}  // namespace

Ref<NSString> kbxStringWithFormat(NSString* format, FormatArguments arguments) {
  return stringWithFormatArguments(format, arguments);
}

Ref<NSString> kbxUniqueString() {
  const UUIDBytes bytes = randomUUID();
  if (bytes == UUIDBytes{}) return nullptr;
  return NSString::stringWithUTF8(uuidString(bytes));
}

Ref<NSString> kbxUniqueString(NSString* prefix) {
  return stringWithFormat("%@.%@"_ns, prefix, kbxUniqueString());
}

NSStringEncoding kbxStringEncodingForMIMEEncoding(NSString* name) {
  if (!name) return NSISOLatin1StringEncoding;
  const auto encoding = encodingOfCharset(name->lowercaseString()->lossyUTF8());
  return encoding == NSUnknownStringEncoding ? NSISOLatin1StringEncoding : encoding;
}

Ref<NSString> kbxStringWithFileSystemRepresentation(const char* path) {
  if (!path) return nullptr;
  return kbxStringWithFileSystemRepresentation(path, std::string_view(path).size());
}

Ref<NSString> kbxStringWithFileSystemRepresentation(const char* path, std::size_t length) {
  return NSFileManager::defaultManager()->stringWithFileSystemRepresentation(path, length);
}

Ref<NSString> kbxStringWithCharacter(char16_t character) {
  return NSString::stringWithUTF16({&character, 1});
}

Ref<NSString> kbxStringWith32BitCharacter(std::uint32_t character) {
  const std::uint8_t bytes[] = {
      static_cast<std::uint8_t>(character), static_cast<std::uint8_t>(character >> 8),
      static_cast<std::uint8_t>(character >> 16), static_cast<std::uint8_t>(character >> 24)};
  return kbxStringWithData(NSData::dataWithBytes(bytes, sizeof bytes),
                           NSUTF32LittleEndianStringEncoding, nullptr);
}

Ref<NSString> kbxStringWithData(NSData* data, NSStringEncoding encoding, Ref<NSError>* error) {
  Ref<NSString> string = NSString::initWithData(data, encoding);
  if (!string && error) *error = notDecodedError(data, encoding);
  return string;
}

Ref<NSString> kbxStringWithUTF8Data(NSData* data) {
  return kbxStringWithData(data, NSUTF8StringEncoding, nullptr);
}

Ref<NSString> kbxStringWithContentsOfFile(NSString* path) {
  const Ref<NSURL> url = NSURL::fileURLWithPath(path, false);
  const Ref<NSData> data =
      url ? NSData::dataWithContentsOfURL(url, NSDataReadingNone, nullptr) : nullptr;
  if (!data) return nullptr;
  if (Ref<NSString> string = kbxStringWithUTF8Data(data)) return string;
  // Without a mark any bytes in pairs would pass for UTF-16, and nothing would be left for Roman.
  if (beginsWithUTF16Mark(data))
    if (Ref<NSString> string = kbxStringWithData(data, NSUnicodeStringEncoding, nullptr))
      return string;
  return kbxStringWithData(data, NSMacOSRomanStringEncoding, nullptr);
}

}  // namespace kbx
