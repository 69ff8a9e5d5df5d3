// What the platform says of a file that it could not read, write or remove.
#pragma once

#include "platform/objects/NSError.h"

namespace kbx {

class NSURL;

enum class FileAction { Reading, Writing, Removing };

/// The error of NSCocoaErrorDomain for a failed system call: the file's path, the POSIX error
/// underneath, and the code that fits the number (an `errno` value).
KBX_PLATFORM Ref<NSError> fileError(NSURL* url, FileAction action, int number);

/// The same for reading what is no regular file: 256 with EISDIR for a folder, ENOTSUP for a pipe,
/// a socket or a device.
KBX_PLATFORM Ref<NSError> notRegularFileError(NSURL* url, bool isDirectory);

}  // namespace kbx
