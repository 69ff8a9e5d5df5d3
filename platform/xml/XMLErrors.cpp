#include "platform/xml/XMLErrors.h"

namespace kbx {

void failXML(Ref<NSError>* error, NSXMLParserErrorCode code, std::string_view description) {
  if (!error) return;
  auto text = NSString::stringWithLossyUTF8(description);
  *error = NSError::errorWithDomain(
      NSXMLParserErrorDomain(), code,
      NSDictionary::dictionaryWithPairs({{NSLocalizedDescriptionKey(), text}}));
}

}  // namespace kbx
