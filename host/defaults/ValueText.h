// ValueText: values of property lists as text that reads back the same.
#pragma once

#include "host/console/Output.h"
#include "platform/objects/NSObject.h"

namespace kbx {

/// Writes a value in the form that valueOfText() takes for the same value of the same kind, down
/// to the last digit. Dictionaries have their keys sorted and an entry a line, arrays an element a
/// line. A string stands bare where nothing else could be meant by it, else in quotes; whatever
/// could drive a terminal is escaped. What no property list is, because it holds itself or the same
/// things again and again, ends in "...": deeper than 512 levels, or by RepeatedContent.
void writeValueText(Output& output, NSObject* value);

}  // namespace kbx
