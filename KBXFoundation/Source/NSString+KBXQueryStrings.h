// NSString(KBXTextMunging): the query of a URL and the dictionary that it stands for.
#pragma once

#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// The values of a query "name=value&…" by their names, percent escapes decoded.
/// (kbxQueryStringDictionary)
///
/// Pieces without "=" or with more than one are left out, and so are those whose escapes are wrong.
/// The last of equal names counts. "+" stays as it is.
Ref<NSMutableDictionary> kbxQueryStringDictionary(NSString* string);

/// The query of a dictionary of texts, its names in the order of caseInsensitiveCompare().
/// (kbxQueryStringWithDictionary:)
///
/// On systems from 10.10 on it is the URL components' query with ";" and "+" escaped as well,
/// absent when a name or value holds a lone surrogate. On older ones names and values are escaped
/// as kbxEncodeForQueryString() does, and such a text prints as "(null)".
///
/// Absent for an absent dictionary, "" for an empty one. Raises NSInvalidArgumentException when a
/// key or value is no text.
Ref<NSString> kbxQueryStringWithDictionary(NSDictionary* dictionary);

}  // namespace kbx
