// ResourceValues: what the system knows of the item at a location, key by key.
#pragma once

#include "platform/objects/NSError.h"
#include "platform/objects/NSString.h"

namespace kbx {

class NSURL;

/// The value of a resource key (NSURL.h), read from the system now. Any thread.
///
/// Absent without an error for a key that is not known here, and where the item has no such value;
/// absent with the error of reading (NSCocoaErrorDomain 260 and so on) where there is no item. A
/// link at the end of the path is the item itself, but for the type identifier it counts as what it
/// leads to, under the link's own name.
Ref<NSObject> readResourceValue(NSURL* url, NSString* key, Ref<NSError>* error);

}  // namespace kbx
