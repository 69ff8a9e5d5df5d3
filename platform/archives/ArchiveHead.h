// ArchiveHead: the list of objects in a keyed archive, and what refers into it.
#pragma once

#include <cstddef>
#include <optional>

#include "platform/archives/ArchiveFault.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"

namespace kbx {

/// What an archive begins with. Objects are named by their place in the list; one that is described
/// there as a dictionary is made of the dictionary's values, its parts.
class ArchiveHead {
 public:
  /// False when there is no root, and with a fault when that is wrong.
  bool read(NSObject* archive, ArchiveFault& fault);

  std::size_t root() const noexcept { return _root; }
  std::size_t count() const noexcept { return _objects->count(); }
  /// The object as it is described in the list.
  NSObject* described(std::size_t place) const { return _objects->objectAtIndex(place); }
  /// Whether what stands at the place is no object.
  bool isAbsent(std::size_t place) const;
  /// The place that a reference names; absent when it is none, or names no object.
  std::optional<std::size_t> placeOf(NSObject* reference) const;
  /// A part as it stands there, or what it refers to as that stands in the list.
  NSObject* part(NSDictionary* parts, NSString* name) const;

 private:
  Ref<NSArray> _objects;
  std::size_t _root = 0;
};

}  // namespace kbx
