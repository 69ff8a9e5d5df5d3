// NSString(KBXFourCharCodes): codes of four characters as texts.
#pragma once

#include "platform/objects/NSString.h"
#include "platform/system/OperatingSystem.h"

namespace kbx {

/// The four bytes of the code, the highest first, as Mac OS Roman; kbxUnknownCode() for 0.
/// (kbxStringWithFourCharCode:)
Ref<NSString> kbxStringWithFourCharCode(OSType code);

/// The code of a text; 0 for an absent text and for one that Mac OS Roman lacks.
/// (kbxFourCharCodeValue)
///
/// A length other than 4 raises "Precondition Failed: [self length] == 4".
OSType kbxFourCharCodeValue(NSString* string);

/// The text that stands for no code: empty, so no code has it. (kbxUnknownCode)
Ref<NSString> kbxUnknownCode();
/// Whether the text is that one. (kbxIsUnknownCode)
bool kbxIsUnknownCode(NSString* string);

}  // namespace kbx
