// Text from bytes in every encoding and back. The first byte chooses the encoding.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "NSString+KBXConversionsBasics.h"
#include "NSString+KBXCreation.h"
#include "platform/text/Charsets.h"
#include "platform/text/UTF8.h"

namespace kbx {
namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

const std::vector<NSStringEncoding>& encodings() {
  static const auto* const all = [] {
    auto* made = new std::vector{NSNonLossyASCIIStringEncoding};
    for (const Charset& charset : charsets())
      made->push_back(static_cast<NSStringEncoding>(charset.encoding));
    return made;
  }();
  return *all;
}

/// Whether each text has one form alone and each form one text.
bool isExact(NSStringEncoding encoding) {
  switch (encoding) {
    case NSASCIIStringEncoding:
    case NSUTF8StringEncoding:
    case NSISOLatin1StringEncoding:
    case NSMacOSRomanStringEncoding:
    case NSUTF16BigEndianStringEncoding:
    case NSUTF16LittleEndianStringEncoding:
    case NSUTF32BigEndianStringEncoding:
    case NSUTF32LittleEndianStringEncoding:
      return true;
    default:
      return false;
  }
}

/// What has been encoded without loss is read as the same text.
void encodeAndDecode(NSString* text, NSStringEncoding encoding) {
  Ref<NSError> error;
  const Ref<NSData> bytes = kbxDataUsingEncoding(text, encoding, &error);
  require((bytes == nullptr) == (error != nullptr));
  if (bytes) require(isEqual(kbxStringWithData(bytes, encoding, nullptr), text));
  require(text->dataUsingEncoding(encoding, true) != nullptr);
}

void decodeAndEncode(NSData* bytes, NSStringEncoding encoding) {
  Ref<NSError> error;
  const Ref<NSString> text = kbxStringWithData(bytes, encoding, &error);
  require((text == nullptr) == (error != nullptr));
  if (!text) return;
  encodeAndDecode(text, encoding);
  if (isExact(encoding)) require(isEqual(text->dataUsingEncoding(encoding), bytes));
}

/// Long text stays in UTF-8 and is checked by another piece of code than short text.
void decodeBehindLongText(NSData* bytes) {
  std::string longer;
  for (int i = 0; i < 1000; ++i) longer += "\u00E9";
  longer += bytes->view();
  const Ref<NSString> kept = NSString::stringWithUTF8(longer);
  const auto units = utf16FromUTF8(longer);
  require((kept != nullptr) == units.has_value());
  if (kept) require(isEqual(kept, NSString::stringWithUTF16(*units)));
}

}  // namespace
}  // namespace kbx

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace kbx;
  if (size == 0) return 0;
  const NSStringEncoding encoding = encodings()[bytes[0] % encodings().size()];
  const Ref<NSData> data = NSData::dataWithBytes(bytes + 1, size - 1);
  decodeAndEncode(data, encoding);
  decodeBehindLongText(data);
  // Any units are a text as well.
  const std::string_view pairs = data->view().substr(data->length() % 2);
  encodeAndDecode(
      NSString::initWithData(NSData::dataWithBytes(pairs), NSUTF16LittleEndianStringEncoding),
      encoding);
  return 0;
}
