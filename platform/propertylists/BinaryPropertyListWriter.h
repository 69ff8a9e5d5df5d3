// BinaryPropertyListWriter: a property list in the binary form of version 1.0.
#pragma once

#include <cstddef>
#include <string>

#include "platform/objects/NSData.h"

namespace kbx {

/// The whole file. Equal leaves of up to 256 bytes are written once, longer ones and
/// containers each for themselves; keys are sorted.
///
/// list  one in which faultInPropertyList() finds nothing, or an archive: the same with
///       NSKeyedArchiverUID objects
KBX_PLATFORM Ref<NSData> binaryFromPropertyList(NSObject* list);

/// The bytes of a leaf alone; of equal leaves the same.
std::string binaryFromLeaf(NSObject* leaf);

/// Bytes up to which equal leaves are one object. Readers, ours among them, refuse a file whose
/// objects would grow to much more than the file; of long leaves each has to be there.
inline constexpr std::size_t kLongestSharedLeaf = 256;

}  // namespace kbx
