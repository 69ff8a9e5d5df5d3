// NSString(KBXComparisons): orders of texts.
#pragma once

#include "platform/objects/NSString.h"

namespace kbx {

/// The order in a list that a person reads: by the rules of the user's language, the case of
/// letters left out, numbers by their value. An absent argument comes first.
/// (kbxCompareForDisplay:)
NSComparisonResult kbxCompareForDisplay(NSString* string, NSString* other);

/// The order of the lengths in units, shorter first; absent is as long as empty.
/// (kbxCompareLength:)
NSComparisonResult kbxCompareLength(NSString* string, NSString* other);

}  // namespace kbx
