// Attributes: a message as the metadata attributes that it can be found by.
#pragma once

#include "mail/MessageContent.h"
#include "platform/objects/NSDictionary.h"

namespace kbx {

class TextDecoder;

/// Sets the attributes of a message in a dictionary; what is not known is not set.
///
/// properties   the list behind the message in its .emlx file
/// size         of the message in bytes
/// contentType  of the file; absent for .emlx
void setAttributes(NSMutableDictionary* attributes, MessageContent content,
                   NSDictionary* properties, std::uint64_t size, NSString* contentType,
                   TextDecoder& decoder);

}  // namespace kbx
