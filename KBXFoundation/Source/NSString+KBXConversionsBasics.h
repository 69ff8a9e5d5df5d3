// NSString(KBXConversionsBasics): texts turned into bytes and file locations.
#pragma once

#include "platform/files/NSURL.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSError.h"
#include "platform/objects/NSString.h"
#include "platform/text/StringEncoding.h"

namespace kbx {

/// The bytes of the text in an encoding, without loss. (kbxDataUsingEncoding:error:)
///
/// Fails with error 501, without a stack frame, when a character has no form there or nobody knows
/// the encoding. An absent text is absent bytes and no error.
Ref<NSData> kbxDataUsingEncoding(NSString* string, NSStringEncoding encoding, Ref<NSError>* error);

/// The location of the text as a path; asks the file system whether it is a folder. (kbxFileURL)
Ref<NSURL> kbxFileURL(NSString* path);
/// The same for a path that is no folder, without a question to the file system. (kbxFastFileURL)
Ref<NSURL> kbxFastFileURL(NSString* path);

}  // namespace kbx
