// NSString(KBXPunctuation): punctuation that keyboards lack, each a text of one character.
#pragma once

#include "platform/objects/NSString.h"

namespace kbx {

Ref<NSString> kbxEllipsis();              // U+2026 …
Ref<NSString> kbxEnDash();                // U+2013 –
Ref<NSString> kbxEmDash();                // U+2014 —
Ref<NSString> kbxLeftDoubleQuote();       // U+201C “
Ref<NSString> kbxRightDoubleQuote();      // U+201D ”
Ref<NSString> kbxLeftSingleQuote();       // U+2018 ‘
Ref<NSString> kbxRightSingleQuote();      // U+2019 ’
Ref<NSString> kbxLeftDoubleGuillemet();   // U+00AB «
Ref<NSString> kbxRightDoubleGuillemet();  // U+00BB »
Ref<NSString> kbxLeftSingleGuillemet();   // U+2039 ‹
Ref<NSString> kbxRightSingleGuillemet();  // U+203A ›

/// The text between “ and ”. (kbxDoubleQuotedString)
Ref<NSString> kbxDoubleQuotedString(NSString* string);

}  // namespace kbx
