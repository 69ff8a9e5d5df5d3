// CharacterReferences: what "&nbsp;" and "&#8364;" stand for in HTML.
#pragma once

#include <string_view>

#include "platform/Export.h"
#include "platform/markup/CharacterReference.h"

namespace kbx {

/// The character reference that `text` begins with; it begins with "&".
///
/// isInAttribute  a name without its semicolon stands for itself before "=", a letter or a digit
///
/// By HTML's rules: the longest name of the full list wins. A number from 128 to 159 is a character
/// of windows-1252; one that is no character is U+FFFD; a control character stands for nothing and
/// a form feed for a blank.
KBX_PLATFORM CharacterReference characterReference(std::string_view text, bool isInAttribute);

}  // namespace kbx
