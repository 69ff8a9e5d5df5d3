// NSString(KBXTextMunging): texts put together and with parts replaced.
#pragma once

#include <cstddef>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// The descriptions of the elements with the text between them; absent for an absent array.
/// (kbxJoin:)
Ref<NSString> kbxJoin(NSString* separator, NSArray* array);

/// The text with the suffix at its end; a copy of one that ends with it already. An absent suffix
/// raises NSInvalidArgumentException. (kbxStringByEnsuringSuffix:)
Ref<NSString> kbxStringByEnsuringSuffix(NSString* string, NSString* suffix);

/// The text with every occurrence replaced, unit by unit. (kbxStringByReplacingString:withString:)
///
/// An empty target occurs nowhere; an absent target or replacement raises
/// NSInvalidArgumentException.
Ref<NSString> kbxStringByReplacingString(NSString* string, NSString* target, NSString* replacement);
/// The same for the first occurrence; a copy of the text without one.
/// (kbxStringByReplacingFirstOccurrenceOfString:withString:)
Ref<NSString> kbxStringByReplacingFirstOccurrenceOfString(NSString* string, NSString* target,
                                                          NSString* replacement);

/// The text with every occurrence of each key replaced by its value.
/// (kbxStringByExpandingKeysInDictionary:)
///
/// dictionary  texts by the texts that stand for them, in the order in which they are replaced, so
///             what one inserted a later one may change. Raises NSInvalidArgumentException when a
///             key or value is no text.
///
/// The very same object for an empty or absent dictionary.
Ref<NSString> kbxStringByExpandingKeysInDictionary(NSString* string, NSDictionary* dictionary);

/// The text with the separator in front of every so manieth unit but the first.
/// (kbxStringByChunking:with:)
///
/// chunkSize  not 0; with 0 a text of two or more units ends the process with an arithmetic fault
/// with       the separator; absent separates by nothing
Ref<NSString> kbxStringByChunking(NSString* string, std::size_t chunkSize, NSString* with);

/// The text without any U+0000, wherever it stands; a copy of one that has none.
/// (kbxStringByTrimmingNulls)
Ref<NSString> kbxStringByTrimmingNulls(NSString* string);

}  // namespace kbx
