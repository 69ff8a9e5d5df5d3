// Text detection: the text of bytes that do not say what encoding they are in.
#pragma once

#include "platform/objects/NSString.h"
#include "platform/text/StringEncoding.h"

namespace kbx {

class NSData;
class NSError;
class NSURL;

/// The text of the bytes; absent when nobody can tell their encoding.
///
/// bytes         required
/// usedEncoding  where to store the encoding's number (0 for one without), or nullptr
///
/// A byte-order mark decides and is not part of the text. Without one, valid UTF-8 is UTF-8; any
/// other bytes are what a statistical detector takes them for, with U+FFFD for what is malformed
/// in that encoding. ASCII and UTF-8 cost one pass; ASCII and long UTF-8 text share the buffer.
KBX_PLATFORM Ref<NSString> stringByDetectingEncoding(NSData* bytes, NSStringEncoding* usedEncoding);

/// The text of a file, its encoding detected. (stringWithContentsOfURL:usedEncoding:error:)
///
/// Fails as reading the bytes does, and with NSCocoaErrorDomain 264 when nobody can tell the
/// encoding.
KBX_PLATFORM Ref<NSString> stringWithContentsOfURL(NSURL* url, NSStringEncoding* usedEncoding,
                                                   Ref<NSError>* error);

}  // namespace kbx
