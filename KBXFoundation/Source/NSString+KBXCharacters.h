// NSString(KBXTextMunging): single units of texts, and sets of them.
#pragma once

#include <cstddef>

#include "platform/objects/NSString.h"
#include "platform/text/NSCharacterSet.h"

namespace kbx {

/// Whether the unit at the index is this one; false at the end and beyond.
/// (kbxHasCharacter:atIndex:)
bool kbxHasCharacter(NSString* string, char16_t character, std::size_t atIndex);
/// Whether some unit is this one. (kbxContainsCharacter:)
bool kbxContainsCharacter(NSString* string, char16_t character);
/// How many units are this one. (kbxCountOccurrencesOfCharacter:)
std::size_t kbxCountOccurrencesOfCharacter(NSString* string, char16_t character);

// The units of a pair are looked up one by one, as lone surrogates.

/// Whether every unit is in the set: true for an empty text, even when the set is absent.
/// (kbxMatchesCharacterSet:)
bool kbxMatchesCharacterSet(NSString* string, NSCharacterSet* set);
/// The units that the set holds, in their order; an absent set holds none.
/// (kbxStringByKeepingCharactersInSet:)
Ref<NSString> kbxStringByKeepingCharactersInSet(NSString* string, NSCharacterSet* set);

}  // namespace kbx
