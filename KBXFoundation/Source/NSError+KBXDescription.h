// NSError(KBX): the whole of an error as text.
#pragma once

#include "platform/objects/NSError.h"

namespace kbx {

/// Everything that is known of the error and of the errors behind it, keys sorted, nested values
/// indented four blanks a level: "<NSError Domain=D Code=N UserInfo={…}>".
/// (kbxFullDescription)
///
/// error  absent gives absent
///
/// What the user info lacks of description, failure reason and recovery suggestion is filled in
/// from what the platform says of the domain and code. Raises NSInvalidArgumentException when what
/// stands under NSUnderlyingErrorKey() is no error. Values deeper than 100 levels, and those that
/// would come after 16 million units of text or after as much work as a DescriptionBudget allows,
/// print as "...". With the user default
/// "ErrorShortLogging", each error described also writes "Error: " and its one-line description to
/// the classic log.
Ref<NSString> kbxFullDescription(NSError* error);

}  // namespace kbx
