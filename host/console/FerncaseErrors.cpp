#include "host/console/FerncaseErrors.h"

namespace kbx {

Ref<NSError> ferncaseError(FerncaseErrorCode code, NSString* description) {
  return NSError::errorWithDomain(
      FerncaseErrorDomain(), code,
      NSDictionary::dictionaryWithPairs({{NSLocalizedDescriptionKey(), description}}));
}

Ref<NSError> ferncaseError(FerncaseErrorCode code, std::string_view description) {
  return ferncaseError(code, NSString::stringWithLossyUTF8(description));
}

}  // namespace kbx
