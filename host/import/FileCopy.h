// FileCopy: copies what a descriptor gives into a new file.
#pragma once

#include <string>

#include "platform/objects/NSError.h"

namespace kbx {

/// Reads to the end and writes a file that must not be there yet. False when that fails or there is
/// more than a file of 2^31 - 1 bytes can take; then the error names the new file.
///
/// error  may be absent
bool copyToNewFile(int descriptor, const std::string& path, Ref<NSError>* error);

}  // namespace kbx
