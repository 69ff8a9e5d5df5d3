// NSString(KBX…): everything that the library adds to texts.
//
// Lengths and indices count UTF-16 units unless composed characters are named. An absent receiver
// gives an absent result, false or 0. Where a copy of the receiver is promised it is another,
// immutable object. All of this may be called from any thread.
#pragma once

#include "NSString+KBXComparisons.h"
#include "NSString+KBXConversionsBasics.h"
#include "NSString+KBXCreation.h"
#include "NSString+KBXFourCharCodes.h"
#include "NSString+KBXPunctuation.h"
#include "NSString+KBXTextMunging.h"
