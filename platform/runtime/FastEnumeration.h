// FastEnumeration: the members of a collection, one after the other, as long as it stays the same.
#pragma once

#include <cstddef>

#include "platform/objects/NSArray.h"

namespace kbx {

/// Walks an array, or the keys of a dictionary. Belongs to one thread.
///
/// The collection must not change meanwhile: next() then raises NSGenericException. Changes are
/// told by the number of members, and by the member that comes next.
class KBX_PLATFORM FastEnumeration {
 public:
  /// An absent collection has no members. Raises NSInvalidArgumentException for what is no
  /// collection.
  explicit FastEnumeration(NSObject* collection);

  /// How many members there were at the beginning.
  std::size_t count() const noexcept { return _members ? _members->count() : 0; }
  /// The next member; absent at the end, where a last change is not noticed.
  Ref<NSObject> next();

 private:
  NSObject* memberNow(std::size_t index) const;

  const Ref<NSObject> _collection;
  Ref<NSArray> _members;  // as they were at the beginning
  std::size_t _index = 0;
};

}  // namespace kbx
