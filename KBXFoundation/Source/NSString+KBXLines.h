// NSString(KBXTextMunging): the lines of texts.
#pragma once

#include "platform/objects/NSArray.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// The lines without their terminators. (kbxComponentsSeparatedByLineSeparators)
///
/// LF, CR, CR LF, U+0085, U+2028 and U+2029 end a line. A terminator at the end makes no empty line
/// behind it; an empty text has no line.
Ref<NSArray> kbxComponentsSeparatedByLineSeparators(NSString* string);

/// The text with LF for every CR LF and then for every CR; a copy of one without a CR.
/// (kbxStringByNormalizingLineBreaks)
Ref<NSString> kbxStringByNormalizingLineBreaks(NSString* string);

}  // namespace kbx
