// PropertyListErrors: the errors of writing and reading property lists.
#pragma once

#include <string_view>

#include "platform/objects/NSError.h"

namespace kbx {

/// Stores an error of NSCocoaErrorDomain with a description that ends in the fault; nothing when
/// nobody wants it.
void failWritingPropertyList(Ref<NSError>* error, NSCocoaErrorCode code, std::string_view fault);
/// The same for reading, with the code 3840.
void failReadingPropertyList(Ref<NSError>* error, std::string_view fault);

}  // namespace kbx
