// NSString(KBXTextMunging): questions about what a text holds and how it begins.
//
// An absent or empty argument is found nowhere.
#pragma once

#include "platform/objects/NSString.h"

namespace kbx {

/// Whether the text holds the other, unit by unit. (kbxContainsString:)
bool kbxContainsString(NSString* string, NSString* other);
/// The same where case does not count, by Unicode's full folding: "STRASSE" holds "straße".
/// (kbxCaseInsensitiveContainsString:)
bool kbxCaseInsensitiveContainsString(NSString* string, NSString* other);
/// Whether the text begins with the other, where case does not count.
/// (kbxHasCaseInsensitivePrefix:)
bool kbxHasCaseInsensitivePrefix(NSString* string, NSString* prefix);
/// Whether both are the same text, where case does not count; false when `other` is no text.
/// (kbxCaseInsensitiveIsEqual:)
bool kbxCaseInsensitiveIsEqual(NSString* string, NSObject* other);

// The next two have names that are easily taken for each other. Case counts in the first only.

/// Whether the text begins with the other, where neither diacritics nor widths count.
/// (kbxHasDiacriticPrefix:)
bool kbxHasDiacriticPrefix(NSString* string, NSString* prefix);
/// The same where case does not count either. (kbxHasDiacriticInsensitivePrefix:)
bool kbxHasDiacriticInsensitivePrefix(NSString* string, NSString* prefix);

}  // namespace kbx
