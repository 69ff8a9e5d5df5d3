// ImportMessage: from an .emlx file to the attributes of its message.
#pragma once

#include "platform/files/NSURL.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// Sets the attributes of the message in a file; false, with nothing set, when the file cannot be
/// opened or not be read to its end. See docs/mail.md for the attributes. Safe from any thread.
bool importMessage(NSURL* file, NSString* contentType, NSMutableDictionary* attributes,
                   Ref<NSError>* error);

}  // namespace kbx
