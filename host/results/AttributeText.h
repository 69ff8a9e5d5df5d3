// AttributeText: attributes as people read them, one "name = value" under the other.
#pragma once

#include "host/console/Output.h"
#include "platform/objects/NSDictionary.h"

namespace kbx {

/// Writes the attributes sorted by name, their equals signs aligned.
///
/// Strings stand in double quotes, with backslashes before quotes and backslashes; further lines
/// begin in the column of the first, and CR LF is a line break like LF. Arrays have one element a
/// line, indented by four blanks. Numbers and dates are bare, data shows its length and its first
/// and last bytes. Whatever could drive a terminal is escaped. Levels deeper than 64 print as
/// "...", and so does what makes the value write too much again (RepeatedContent).
void writeAttributeText(Output& output, NSDictionary* attributes);

}  // namespace kbx
