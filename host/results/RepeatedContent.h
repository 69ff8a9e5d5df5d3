// RepeatedContent: bounds what a writer writes again.
#pragma once

#include <cstddef>
#include <unordered_set>

#include "platform/objects/Description.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// Counts what is written of the collections in one value that were written already. Everything is
/// written once, however much it is; but a small collection may hold another twice, which holds a
/// third twice, or hold itself. Belongs to one writing of one value.
///
/// While it lives, the descriptions that are asked for share one DescriptionBudget.
class RepeatedContent {
 public:
  /// Whether there is room for the collection, which is entered then: always the first time, later
  /// while less than 2^24 bytes were written again. Each true answer takes a leave().
  ///
  /// count   how many elements or entries it has
  /// indent  how many blanks stand before each
  bool enter(const NSObject* collection, std::size_t count, std::size_t indent);
  void leave() noexcept {
    if (_openRepeated > 0) --_openRepeated;
  }
  /// Whether there is room for a text in the collection that is open.
  bool take(NSString* text) { return _openRepeated == 0 || take(text->length()); }
  /// Whether there is room for so many bytes.
  bool take(std::size_t length) noexcept;

 private:
  bool isSpent() const noexcept { return _spent > kMost; }

  static constexpr std::size_t kMost = std::size_t{1} << 24;
  static constexpr std::size_t kEach = 16;  // what an element is about to take at least

  const DescriptionBudget _descriptions;
  std::unordered_set<const NSObject*> _entered;
  std::size_t _openRepeated = 0;  // collections, from the outermost that is written again
  std::size_t _spent = 0;
};

}  // namespace kbx
