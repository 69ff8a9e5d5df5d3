// ComposedCharacters: where the characters that a reader sees begin and end.
#pragma once

#include <cstddef>

#include "platform/Export.h"
#include "platform/objects/NSString.h"

struct UBreakIterator;

namespace kbx {

/// The composed character sequences of a text: its grapheme clusters, so that a base with its
/// marks, a Hangul syllable, a flag or a joined emoji stays whole. A carriage return and a line
/// feed are two, because each is a line's end of its own.
///
/// Cheap to make. Plain text is answered at sight; other text opens an iterator at the first
/// question. Belongs to one thread at a time.
class KBX_PLATFORM ComposedCharacters {
 public:
  /// text  borrowed while this object lives
  explicit ComposedCharacters(const NSString* text) noexcept : _text(text) {}
  ~ComposedCharacters();
  ComposedCharacters(const ComposedCharacters&) = delete;
  ComposedCharacters& operator=(const ComposedCharacters&) = delete;

  /// Where the sequence that holds the unit at `index` begins; index < length.
  std::size_t startOfSequenceAt(std::size_t index);
  /// Where the sequence that holds the unit at `index` ends; index < length.
  std::size_t endOfSequenceAt(std::size_t index);

 private:
  UBreakIterator* iterator();

  const NSString* const _text;
  UBreakIterator* _iterator = nullptr;
};

}  // namespace kbx
