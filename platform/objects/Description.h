// How collections print themselves: the platform's old-style text, indented four blanks a level.
#pragma once

#include "platform/objects/NSObject.h"
#include "platform/text/StringBuilder.h"

namespace kbx {

/// Appends the text of a value inside a collection: strings in quotes where they need them,
/// collections on lines of their own. Levels deeper than 512 print as "...".
void appendNested(StringBuilder& text, NSObject* value, unsigned level);

}  // namespace kbx
