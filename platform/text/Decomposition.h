// Decomposition: text with its composed characters taken apart.
#pragma once

#include <cstddef>
#include <string_view>

#include "platform/Export.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// How many units the canonical decomposition of a text has. Makes no text, and what the parts of
/// a text have adds up to what the whole has.
KBX_PLATFORM std::size_t decomposedLength(std::u16string_view units);
KBX_PLATFORM std::size_t decomposedLength(const NSString* text);

}  // namespace kbx
