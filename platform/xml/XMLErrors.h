// XMLErrors: the errors of reading and transforming documents.
#pragma once

#include <string_view>

#include "platform/xml/NSXMLDocument.h"

namespace kbx {

/// Stores an error of NSXMLParserErrorDomain with a description; nothing when nobody wants it.
void failXML(Ref<NSError>* error, NSXMLParserErrorCode code, std::string_view description);

}  // namespace kbx
