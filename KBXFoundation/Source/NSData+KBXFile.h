// NSData(KBXFile): whole files as data.
#pragma once

#include "platform/files/NSURL.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// The bytes of a file, read whole. (kbxReadFromURL:error:)
///
/// Fails with the platform's error of reading, or with error 901 "url" when the location is absent;
/// adds no stack frame.
Ref<NSData> kbxReadFromURL(NSURL* url, Ref<NSError>* error);

/// Whether the bytes are in the file now; an existing file is replaced in one step.
/// (kbxWriteToURL:error:)
///
/// Fails with the platform's error of writing, or with error 901 "url" when the location is absent;
/// adds no stack frame. False for absent data.
bool kbxWriteToURL(NSData* data, NSURL* url, Ref<NSError>* error);

}  // namespace kbx
