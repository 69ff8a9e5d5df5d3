// NSString(KBXTextMunging): percent escapes.
#pragma once

#include "platform/objects/NSString.h"

namespace kbx {

/// The text with every percent escape replaced by what it stands for in UTF-8; absent when one is
/// malformed or the bytes are not UTF-8. (kbxDecodePercentEscapes)
Ref<NSString> kbxDecodePercentEscapes(NSString* string);
/// The same, leaving the escapes of some characters as they are written; an absent argument leaves
/// them all. (kbxDecodePercentEscapesKeepingEscaped:)
Ref<NSString> kbxDecodePercentEscapesKeepingEscaped(NSString* string, NSString* characters);

/// The text with percent escapes for what a name or value in a query may not hold: all but letters,
/// digits and -_.!~*'()$+,/:;?@. Absent for a lone surrogate. (kbxEncodeForQueryString)
Ref<NSString> kbxEncodeForQueryString(NSString* string);
/// The text with percent escapes for what a URL may not hold: all but letters, digits,
/// -_.!~*'()$&+,/:;=?@ and the given characters. Absent for a lone surrogate.
/// (kbxEncodeURLKeepingUnescaped:)
Ref<NSString> kbxEncodeURLKeepingUnescaped(NSString* string, NSString* characters);

}  // namespace kbx
