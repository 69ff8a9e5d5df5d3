// NSString(KBXTextMunging): cutting, replacing, searching and escaping, by subject.
#pragma once

#include "NSString+KBXCharacters.h"
#include "NSString+KBXComposedCharacters.h"
#include "NSString+KBXCutting.h"
#include "NSString+KBXLines.h"
#include "NSString+KBXPercentEscapes.h"
#include "NSString+KBXQueryStrings.h"
#include "NSString+KBXReplacing.h"
#include "NSString+KBXSearching.h"
