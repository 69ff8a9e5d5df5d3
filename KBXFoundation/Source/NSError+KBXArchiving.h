// NSError(KBX): errors that can be stored.
#pragma once

#include "platform/objects/NSError.h"

namespace kbx {

/// The error with every user-info value that cannot be archived replaced by its description; the
/// errors behind it are treated in the same way. (kbxArchivableError)
///
/// error  absent gives absent
///
/// A value can be archived when its class, or itself where it is a class, adopts "NSCoding" and it
/// is no live reference to another program's objects. Collections count as a whole: what they hold
/// is not looked at.
Ref<NSError> kbxArchivableError(NSError* error);

}  // namespace kbx
