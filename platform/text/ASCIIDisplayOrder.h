// ASCIIDisplayOrder: the order of ASCII texts in lists, where no language changes it.
#pragma once

#include "platform/objects/NSString.h"

namespace kbx {

/// The order of two ASCII texts by the common collation order, the case of letters left out:
/// blanks, punctuation, signs, digits, letters. Control characters other than blanks do not count.
///
/// isNumeric  runs of digits by their number
KBX_PLATFORM NSComparisonResult compareASCIIForDisplay(const NSString* a, const NSString* b,
                                                       bool isNumeric);

}  // namespace kbx
