// Value equality of what holds other objects, without recursion.
#pragma once

#include "platform/objects/NSObject.h"

namespace kbx {

/// Whether two arrays, two dictionaries or two errors are equal: behind their isEqual().
///
/// Works through what they hold with a list instead of the stack, so that nesting costs memory and
/// not a crash, and compares a pair of collections once, however often both hold it.
bool areEqualContainers(NSObject* a, NSObject* b);

}  // namespace kbx
