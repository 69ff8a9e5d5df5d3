#include "platform/propertylists/PropertyListErrors.h"

#include <string>

namespace kbx {
namespace {

void fail(Ref<NSError>* error, NSCocoaErrorCode code, std::string text) {
  if (!error) return;
  auto description = NSString::stringWithLossyUTF8(text);
  *error = NSError::errorWithDomain(
      NSCocoaErrorDomain(), code,
      NSDictionary::dictionaryWithPairs({{NSLocalizedDescriptionKey(), description}}));
}

}  // namespace

void failWritingPropertyList(Ref<NSError>* error, NSCocoaErrorCode code, std::string_view fault) {
  fail(error, code, "The property list couldn’t be written: " + std::string(fault) + ".");
}

void failReadingPropertyList(Ref<NSError>* error, std::string_view fault) {
  fail(error, NSPropertyListReadCorruptError,
       "The property list couldn’t be read: " + std::string(fault) + ".");
}

}  // namespace kbx
