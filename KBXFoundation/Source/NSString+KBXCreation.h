// NSString(KBXCreation): texts made of formats, UUIDs, characters, bytes and files.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/objects/NSData.h"
#include "platform/objects/NSError.h"
#include "platform/objects/NSString.h"
#include "platform/text/Format.h"
#include "platform/text/StringEncoding.h"

namespace kbx {

/// The format with its arguments filled in. (kbxStringWithFormat:arguments:)
Ref<NSString> kbxStringWithFormat(NSString* format, FormatArguments arguments);

/// A new UUID in its standard form; absent when none could be made. (kbxUniqueString)
Ref<NSString> kbxUniqueString();
/// The prefix, a full stop and a new UUID; absent ones print as "(null)". (kbxUniqueString:)
Ref<NSString> kbxUniqueString(NSString* prefix);

/// The encoding of a charset's name in the IANA registry, in any case.
/// (kbxStringEncodingForMIMEEncoding:)
///
/// ISO Latin 1 for an absent name and for one that nobody knows.
NSStringEncoding kbxStringEncodingForMIMEEncoding(NSString* name);

/// The text of a path as system calls take it, up to its NUL; absent for null.
/// (kbxStringWithFileSystemRepresentation:)
Ref<NSString> kbxStringWithFileSystemRepresentation(const char* path);
/// The same for so many bytes. (kbxStringWithFileSystemRepresentation:length:)
Ref<NSString> kbxStringWithFileSystemRepresentation(const char* path, std::size_t length);

/// A text of exactly one unit, a lone surrogate too. (kbxStringWithCharacter:)
Ref<NSString> kbxStringWithCharacter(char16_t character);
/// The text of one character; absent for a value that is no Unicode scalar.
/// (kbxStringWith32BitCharacter:)
Ref<NSString> kbxStringWith32BitCharacter(std::uint32_t character);

/// The text of bytes in an encoding. (kbxStringWithData:encoding:error:)
///
/// Fails with error 500, without a stack frame, when the bytes are malformed or absent or nobody
/// knows the encoding. A byte-order mark counts as in NSString::initWithData().
Ref<NSString> kbxStringWithData(NSData* data, NSStringEncoding encoding, Ref<NSError>* error);
/// The text of UTF-8 bytes; absent when they are malformed. (kbxStringWithUTF8Data:)
Ref<NSString> kbxStringWithUTF8Data(NSData* data);

/// The text of a file: UTF-8 if it is that, else UTF-16 if it has a byte-order mark, else Mac OS
/// Roman. Absent when the file cannot be read. (kbxStringWithContentsOfFile:)
Ref<NSString> kbxStringWithContentsOfFile(NSString* path);

}  // namespace kbx
