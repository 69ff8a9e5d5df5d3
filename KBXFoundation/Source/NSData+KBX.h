// NSData(KBX): searching, replacing and slicing byte buffers.
//
// Positions and lengths are in bytes; not found is NSNotFound with length 0. An absent receiver
// gives an absent result, (0, 0) for a range and false for a question. All of this may be called
// from any thread.
#pragma once

#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSString.h"

namespace kbx {

class NSCharacterSet;

/// Appends one byte: the low eight bits of the value. (kbxAppendByte:)
void kbxAppendByte(NSMutableData* data, int byte);

/// A buffer of the bytes before the terminating zero. (kbxDataWithCString:)
///
/// string  required; when missing, raises "Precondition Failed: string"
Ref<NSData> kbxDataWithCString(const char* string);

// ---- Searching ---------------------------------------------------------------------------

/// The first range that holds `pattern`. (kbxRangeOfData:)
///
/// pattern  required; when missing, raises "Precondition Failed: data"
NSRange kbxRangeOfData(NSData* data, NSData* pattern);

/// The first range within `range` that holds `pattern`. (kbxRangeOfData:range:)
///
/// range  one that starts at or behind the end, or reaches past it, finds nothing
///
/// An empty pattern is found at range.location, whatever that is. Allocates nothing; the time grows
/// with the length of the range, whatever the bytes are.
NSRange kbxRangeOfData(NSData* data, NSData* pattern, NSRange range);

/// Whether kbxRangeOfData() finds the pattern. (kbxContainsData:)
bool kbxContainsData(NSData* data, NSData* pattern);

/// The first range that holds the UTF-8 form of a text. (kbxRangeOfString:)
///
/// string  required; when missing, raises "Precondition Failed: string". A text without a UTF-8
///         form is in no buffer.
NSRange kbxRangeOfString(NSData* data, NSString* string);

/// Whether kbxRangeOfString() finds the text. (kbxContainsString:)
bool kbxContainsString(NSData* data, NSString* string);

/// The bytes from the first match of a C string to the end, the match included; an empty buffer
/// when it is not found. (kbxSubdataStartingWithCString:)
Ref<NSData> kbxSubdataStartingWithCString(NSData* data, const char* string);

/// The bytes behind the first match of a C string; an empty buffer when it is not found.
/// (kbxSubdataFromCString:)
Ref<NSData> kbxSubdataFromCString(NSData* data, const char* string);

// ---- Replacing and filtering -------------------------------------------------------------

/// A new buffer in which every occurrence of `target`, from left to right, is replaced.
/// (kbxDataByReplacingData:withData:)
///
/// target       must not be empty: an empty one would be found for ever and raises
///              NSInvalidArgumentException
/// replacement  absent is empty
Ref<NSData> kbxDataByReplacingData(NSData* data, NSData* target, NSData* replacement);

/// A new buffer in which every CR LF, and then every CR that is left, is an LF.
/// (kbxDataByNormalizingLineBreaks)
Ref<NSData> kbxDataByNormalizingLineBreaks(NSData* data);

/// The buffer without its first line and that line's break (CR LF, CR or LF); the receiver itself
/// when there is no line break. (kbxDataByDeletingFirstLine)
Ref<NSData> kbxDataByDeletingFirstLine(NSData* data);

/// The buffer without its zero bytes; the receiver itself when it has none.
/// (kbxDataByDeletingNulls)
Ref<NSData> kbxDataByDeletingNulls(NSData* data);

/// A new buffer of the bytes that, as code points 0 to 255, are in the set.
/// (kbxDataByKeepingCharactersInSet:)
///
/// set  absent keeps nothing
Ref<NSData> kbxDataByKeepingCharactersInSet(NSData* data, NSCharacterSet* set);

// ---- Slicing -----------------------------------------------------------------------------

/// Consecutive pieces of exactly `componentLength` bytes. (kbxComponentsOfLength:)
///
/// Raises "Precondition Failed: …" when the buffer is shorter than one piece or no multiple of it,
/// NSRangeException for an empty buffer, whose first piece lies outside, and
/// NSInvalidArgumentException for a length of 0.
Ref<NSArray> kbxComponentsOfLength(NSData* data, std::uint64_t componentLength);

/// The bytes of the part of `range` that lies inside the buffer. Never raises.
/// (kbxSafeSubdataWithRange:sourceLocation:)
///
/// sourceLocation  the caller's description of itself, for the line that the classic log gets when
///                 the range reaches outside
Ref<NSData> kbxSafeSubdataWithRange(NSData* data, NSRange range, NSString* sourceLocation);

}  // namespace kbx
