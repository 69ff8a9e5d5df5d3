// NSURL(KBXFileBasics): the parts of a file location.
#pragma once

#include "platform/files/NSURL.h"

namespace kbx {

/// The location without its last path component; absent for an absent one. (kbxParent)
Ref<NSURL> kbxParent(NSURL* url);

/// The location of `name` in this one; absent for an absent location. (kbxChild:)
///
/// name  required; when missing, raises "Precondition Failed: name"
Ref<NSURL> kbxChild(NSURL* url, NSString* name);

}  // namespace kbx
