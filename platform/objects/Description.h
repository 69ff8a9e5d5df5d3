// How collections print themselves: the platform's old-style text, indented four blanks a level.
#pragma once

#include <cstddef>

#include "platform/Export.h"
#include "platform/objects/NSObject.h"
#include "platform/text/StringBuilder.h"

namespace kbx {

/// What the descriptions on the calling thread may still cost together: the outermost budget that
/// is open counts, from its beginning to its end. What is described may hold the same things again
/// and again, so that to bound the text is not enough. Whoever prints values one by one holds one.
class KBX_PLATFORM DescriptionBudget {
 public:
  DescriptionBudget() noexcept;
  ~DescriptionBudget();
  DescriptionBudget(const DescriptionBudget&) = delete;
  DescriptionBudget& operator=(const DescriptionBudget&) = delete;

  /// Whether no other budget is open around this one.
  bool isOutermost() const noexcept { return _isOutermost; }
  /// units  of text that are written or copied, or other work that takes about as long
  void spend(std::size_t units) const noexcept;
  /// Whether 2^26 units are spent: "..." is printed for what is not printed yet.
  bool isSpent() const noexcept;

 private:
  const bool _isOutermost;
};

/// One level of a description on the calling thread, while it lives. Descriptions ask for others,
/// in collections, in errors and in whatever a class prints of itself, and what is described may be
/// nested without end.
class DescriptionLevel {
 public:
  DescriptionLevel() noexcept;
  ~DescriptionLevel();
  DescriptionLevel(const DescriptionLevel&) = delete;
  DescriptionLevel& operator=(const DescriptionLevel&) = delete;

  /// Whether "..." is printed for what is on this level: more than 512 are open, or the budget is
  /// spent.
  bool isCut() const noexcept;
  const DescriptionBudget& budget() const noexcept { return _budget; }

 private:
  const DescriptionBudget _budget;
};

/// Whether enough is printed: 2^24 units of this text, or the budget. Says so in the text.
bool endsHere(StringBuilder& text, const DescriptionBudget& budget);

/// Appends the text of a value inside a collection: strings in quotes where they need them,
/// collections on lines of their own, `indent` times four blanks further in.
///
/// Prints "..." for levels that are too deep, and for what comes behind 2^24 units of text or
/// behind the budget: one collection may hold another many times, which may hold a third many
/// times. So it does for an object, other than a text or a collection, that has more than 2^20
/// units to say of itself.
void appendNested(StringBuilder& text, NSObject* value, unsigned indent);

}  // namespace kbx
