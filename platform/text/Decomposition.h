// Decomposition: text with its composed characters taken apart.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/Export.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// How many units the canonical decomposition of a text has. Makes no text, and what the parts of
/// a text have adds up to what the whole has.
KBX_PLATFORM std::size_t decomposedLength(std::u16string_view units);
KBX_PLATFORM std::size_t decomposedLength(const NSString* text);

/// Appends the canonical decomposition of one character. A lone surrogate is itself.
KBX_PLATFORM void appendDecomposed(std::u32string& characters, char32_t character);
/// Brings each run of marks into canonical order.
KBX_PLATFORM void orderMarks(std::u32string& characters);
/// Appends a character, or a lone surrogate, as units.
KBX_PLATFORM void appendUnits(std::u16string& units, char32_t character);

}  // namespace kbx
