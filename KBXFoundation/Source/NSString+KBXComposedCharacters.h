// NSString(KBXTextMunging): parts of texts that split no composed character.
//
// A composed character is what a reader sees as one: a base with its marks, a Hangul syllable, a
// flag, a joined emoji. A carriage return and a line feed are two.
#pragma once

#include <cstddef>

#include "platform/objects/NSString.h"

namespace kbx {

/// The range widened to whole composed characters.
/// (kbxRangeOfComposedCharacterSequencesInRange:)
///
/// Raises NSRangeException with "Invalid range {…}." when the range begins at the end or beyond,
/// reaches past it, or is (0, 0). Any other empty range has the composed character before it.
NSRange kbxRangeOfComposedCharacterSequencesInRange(NSString* string, NSRange range);

/// The part before the composed character that holds the unit at the index; a copy of the text
/// when the index is at the end or beyond. (kbxSubstringToComposedIndex:)
Ref<NSString> kbxSubstringToComposedIndex(NSString* string, std::size_t index);

/// The text without its last composed character. (kbxStringByChoppingComposedCharacter)
Ref<NSString> kbxStringByChoppingComposedCharacter(NSString* string);

/// About so many units of both ends around an ellipsis; a copy of a text that has no more than
/// these. (kbxStringByTruncatingMiddleAfterComposedLength:)
Ref<NSString> kbxStringByTruncatingMiddleAfterComposedLength(NSString* string, std::size_t length);

/// The text, its end cut off where necessary, with the suffix, so that both together have no more
/// than so many units in canonical decomposition. (kbxStringByAddingSuffix:trimmingStemToTotal:)
///
/// A suffix that is longer than the total raises "suffix: '…' length: …"; an absent one raises
/// NSInvalidArgumentException. One that is longer only when it is decomposed leaves nothing of the
/// text, and the result is longer than the total.
Ref<NSString> kbxStringByAddingSuffix(NSString* string, NSString* suffix,
                                      std::size_t trimmingStemToTotal);

}  // namespace kbx
