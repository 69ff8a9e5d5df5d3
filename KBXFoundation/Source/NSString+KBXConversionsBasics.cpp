#include "NSString+KBXConversionsBasics.h"

#include "NSError+KBX.h"
#include "platform/objects/NSNumber.h"

namespace kbx {
namespace {

Ref<NSError> notEncodedError(NSString* string, NSStringEncoding encoding) {
  return KBXError1(
      kStringNotEncodedError,
      NSDictionary::dictionaryWithPairs(
          {{stringErrorKey(), string},
           {stringEncodingErrorKey(), NSNumber::numberWithUnsignedInteger(encoding)},
           {NSLocalizedFailureReasonErrorKey(), "Error encoding data from string."_ns}}));
}

}  // namespace

Ref<NSData> kbxDataUsingEncoding(NSString* string, NSStringEncoding encoding, Ref<NSError>* error) {
  if (!string) return nullptr;
  Ref<NSData> data = string->dataUsingEncoding(encoding);
  if (!data && error) *error = notEncodedError(string, encoding);
  return data;
}

Ref<NSURL> kbxFileURL(NSString* path) { return NSURL::fileURLWithPath(path); }

Ref<NSURL> kbxFastFileURL(NSString* path) { return NSURL::fileURLWithPath(path, false); }

}  // namespace kbx
