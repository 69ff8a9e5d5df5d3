// CaseFolding: what is the same letter whatever its case, its marks or its width.
#pragma once

#include <string>

#include "platform/Export.h"
#include "platform/text/CompareOptions.h"

namespace kbx {

/// Whether a character continues the one before it, so that a search may not tell them apart: a
/// mark, or a part that composes with what stands before.
KBX_PLATFORM bool joinsBefore(char32_t character, NSStringCompareOptions options);

/// The key under which characters are the same: their canonical composition, and as the options say
/// letters in full case folding, no diacritics, the common width. `characters` begins where one
/// begins that joins nothing.
KBX_PLATFORM std::u16string foldedKey(const std::u32string& characters,
                                      NSStringCompareOptions options);

}  // namespace kbx
