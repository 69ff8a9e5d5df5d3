// CaseFolding: what is the same letter whatever its case, its marks or its width.
#pragma once

#include <string>

#include "platform/Export.h"
#include "platform/text/CompareOptions.h"

namespace kbx {

/// Whether a character continues the one before it, so that a search may not tell them apart: a
/// mark, or a part that composes with what stands before.
KBX_PLATFORM bool joinsBefore(char32_t character, NSStringCompareOptions options);

/// The key under which characters are the same: their canonical decomposition, in canonical order,
/// as the options say with letters in full case folding, without diacritics, in common width.
/// `characters` begins where one begins that joins nothing.
KBX_PLATFORM std::u32string foldedCharacters(std::u32string characters,
                                             NSStringCompareOptions options);

/// The key of one character, where it is one character too; 0 when it takes foldedCharacters().
KBX_PLATFORM char32_t foldedCharacter(char32_t character, NSStringCompareOptions options);

}  // namespace kbx
