// BinaryPropertyListWriter: a property list in the binary form of version 1.0.
#pragma once

#include "platform/objects/NSData.h"

namespace kbx {

/// The whole file. Equal leaves of up to 256 bytes are written once, longer ones and
/// containers each for themselves; keys are sorted.
///
/// list  one in which faultInPropertyList() finds nothing
Ref<NSData> binaryFromPropertyList(NSObject* list);

}  // namespace kbx
