// NSString(KBXTextMunging): parts of texts, by unit.
//
// A place beyond the end is no error: the result is cut to what is there.
#pragma once

#include <cstddef>

#include "platform/objects/NSString.h"

namespace kbx {

/// The part before the first occurrence; "" without one. (kbxSubstringToString:)
Ref<NSString> kbxSubstringToString(NSString* string, NSString* end);
/// The part behind the first occurrence; "" without one. (kbxSubstringFromString:)
Ref<NSString> kbxSubstringFromString(NSString* string, NSString* start);

/// The first units; a copy of the text when it has no more than these. (kbxSubstringToIndex:)
Ref<NSString> kbxSubstringToIndex(NSString* string, std::size_t index);
/// The units from the index on; "" at the end and beyond. (kbxSubstringFromIndex:)
Ref<NSString> kbxSubstringFromIndex(NSString* string, std::size_t index);
/// The text without its last unit; "" for an empty one. (kbxStringByChopping)
Ref<NSString> kbxStringByChopping(NSString* string);

/// The first of the pieces between single blanks, which may be empty. (kbxFirstSpaceComponent)
Ref<NSString> kbxFirstSpaceComponent(NSString* string);
/// The last of them. (kbxLastSpaceComponent)
Ref<NSString> kbxLastSpaceComponent(NSString* string);

/// The text without white space and line breaks at both ends. (kbxStringByStripping)
Ref<NSString> kbxStringByStripping(NSString* string);

}  // namespace kbx
