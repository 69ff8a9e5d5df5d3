// How collections print themselves: the platform's old-style text, indented four blanks a level.
#pragma once

#include "platform/objects/NSObject.h"
#include "platform/text/StringBuilder.h"

namespace kbx {

/// One level of a description on the calling thread, while it lives. Descriptions ask for others,
/// in collections, in errors and in whatever a class prints of itself, and what is described may be
/// nested without end.
class DescriptionLevel {
 public:
  DescriptionLevel() noexcept;
  ~DescriptionLevel();
  DescriptionLevel(const DescriptionLevel&) = delete;
  DescriptionLevel& operator=(const DescriptionLevel&) = delete;

  /// Whether more than 512 levels are open: "..." is printed for what is on this one.
  bool isTooDeep() const noexcept;
};

/// Appends the text of a value inside a collection: strings in quotes where they need them,
/// collections on lines of their own, `indent` times four blanks further in.
///
/// Prints "..." for levels that are too deep, and for what comes behind 2^24 units of text: one
/// collection may hold another many times, which may hold a third many times. So it does for an
/// object, other than a text or a collection, that has more than 2^20 units to say of itself.
void appendNested(StringBuilder& text, NSObject* value, unsigned indent);

}  // namespace kbx
