// ArchiveWriter: an object, and all that it holds, as the bytes of a keyed archive.
#pragma once

#include "platform/objects/NSData.h"

namespace kbx {

/// The archive with that root, which may be absent.
///
/// Raises as NSKeyedArchiver::archivedDataWithRootObject() does.
Ref<NSData> archiveWithRoot(NSObject* root);

}  // namespace kbx
