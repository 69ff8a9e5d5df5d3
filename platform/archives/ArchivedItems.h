// ArchivedItems: the objects of an archive while they are made, and how they get what they hold.
#pragma once

#include <cstddef>
#include <vector>

#include "platform/archives/ArchiveFault.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"

namespace kbx {

using ArchiveReferences = std::vector<std::size_t>;

/// An object of the archive: what is known of it while it is made of its parts.
struct ArchivedItem {
  Ref<NSObject> object{};      // there before its parts are, except for locations
  ArchiveReferences first{};   // elements; the keys of a dictionary; the base of a location
  ArchiveReferences second{};  // the values of a dictionary
};

/// An immutable collection that gets what it holds late, because that may hold it.
Ref<NSArray> makeLateArray();
Ref<NSDictionary> makeLateDictionary();

/// The items by their places. Immutable collections among them are late ones.
class ArchivedItems {
 public:
  explicit ArchivedItems(ArchiveFault& fault) : _fault(fault) {}

  void resize(std::size_t count) { _items.resize(count); }
  ArchivedItem& operator[](std::size_t place) { return _items[place]; }
  NSObject* made(std::size_t place) const { return _items[place].object; }

  /// Gives a collection what it refers to; nothing for other objects. False, with a fault, when
  /// that does not fit.
  bool fill(ArchivedItem& item);
  /// False, with a fault, when objects that cannot change form a circle.
  ///
  /// Such a circle would never die. No writer of good will has one, because it cannot be made.
  bool checkCircles();
  /// Takes what was made apart, because what holds itself would never die.
  void abandon();

 private:
  bool fillArray(ArchivedItem& item);
  bool fillDictionary(ArchivedItem& item);
  bool requireKey(NSObject* key);
  bool isFixed(std::size_t place) const;
  template <class Visit>
  void forEachFixedHeldBy(std::size_t place, Visit visit) const;

  ArchiveFault& _fault;
  std::vector<ArchivedItem> _items;
};

}  // namespace kbx
