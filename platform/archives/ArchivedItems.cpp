#include "platform/archives/ArchivedItems.h"

#include <utility>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSError.h"

namespace kbx {
namespace {

/// An immutable array that gets its elements late, because they may hold it.
class LateArray final : public NSArray {
 public:
  LateArray() : NSArray({}) {}
  void fill(Elements elements) { std::swap(_elements, elements); }
};

/// The same for a dictionary.
class LateDictionary final : public NSDictionary {
 public:
  void add(NSObject* key, NSObject* value) { set(key, value); }
  void clear() {
    const auto entries = std::exchange(_entries, {});
    const auto none = NSDictionary::dictionary();
    assign(*none);
  }
};

}  // namespace

Ref<NSArray> makeLateArray() { return Ref<NSArray>::adopt(new LateArray); }
Ref<NSDictionary> makeLateDictionary() { return Ref<NSDictionary>::adopt(new LateDictionary); }

bool ArchivedItems::fill(ArchivedItem& item) {
  if (cast<NSArray>(item.object)) return fillArray(item);
  return !cast<NSDictionary>(item.object) || fillDictionary(item);
}

bool ArchivedItems::fillArray(ArchivedItem& item) {
  NSArray::Elements elements;
  elements.reserve(item.first.size());
  for (std::size_t place : item.first) {
    if (!made(place)) return _fault.fail("a location that is part of itself");
    elements.emplace_back(made(place));
  }
  if (auto* array = cast<NSMutableArray>(item.object))
    array->addObjectsFromArray(NSArray::arrayWithElements(std::move(elements)));
  else
    static_cast<LateArray*>(item.object.get())->fill(std::move(elements));
  return true;
}

/// A key stays as it is and is found quickly, whoever wrote the archive.
bool ArchivedItems::requireKey(NSObject* key) {
  for (NSClass* holder :
       {NSArray::classObject(), NSDictionary::classObject(), NSError::classObject()})
    if (key->isKindOfClass(holder))
      return _fault.fail("a dictionary with a collection or an error as a key");
  return !key->isClassObject() || _fault.fail("a dictionary with a class as a key");
}

bool ArchivedItems::fillDictionary(ArchivedItem& item) {
  auto* mutableOne = cast<NSMutableDictionary>(item.object);
  for (std::size_t i = 0; i < item.first.size(); ++i) {
    NSObject *key = made(item.first[i]), *value = made(item.second[i]);
    if (!key || !value) return _fault.fail("a location that is part of itself");
    if (!requireKey(key)) return false;
    if (mutableOne)
      mutableOne->setObjectForKey(value, key);
    else
      static_cast<LateDictionary*>(item.object.get())->add(key, value);
  }
  return true;
}

/// Whether an object holds others and can never be made to let them go.
bool ArchivedItems::isFixed(std::size_t place) const {
  NSObject* object = made(place);
  return (cast<NSArray>(object) && !cast<NSMutableArray>(object)) ||
         (cast<NSDictionary>(object) && !cast<NSMutableDictionary>(object)) ||
         cast<NSError>(object);
}

template <class Visit>
void ArchivedItems::forEachFixedHeldBy(std::size_t place, Visit visit) const {
  for (const ArchiveReferences* held : {&_items[place].first, &_items[place].second})
    for (std::size_t other : *held)
      if (isFixed(other)) visit(other);
}

/// Those that nobody holds are put aside until none, or a circle, is left.
bool ArchivedItems::checkCircles() {
  std::vector<std::size_t> holders(_items.size(), 0), free;
  std::size_t left = 0;
  for (std::size_t place = 0; place < _items.size(); ++place)
    if (isFixed(place)) ++left, forEachFixedHeldBy(place, [&](std::size_t one) { ++holders[one]; });
  for (std::size_t place = 0; place < _items.size(); ++place)
    if (isFixed(place) && holders[place] == 0) free.push_back(place);
  for (; !free.empty(); --left) {
    const std::size_t place = free.back();
    free.pop_back();
    forEachFixedHeldBy(place, [&](std::size_t one) {
      if (--holders[one] == 0) free.push_back(one);
    });
  }
  return left == 0 || _fault.fail("a collection that cannot change holds itself");
}

void ArchivedItems::abandon() {
  for (ArchivedItem& item : _items) {
    if (auto* array = cast<NSMutableArray>(item.object))
      array->removeAllObjects();
    else if (auto* dictionary = cast<NSMutableDictionary>(item.object))
      dictionary->removeAllObjects();
    else if (cast<NSArray>(item.object))
      static_cast<LateArray*>(item.object.get())->fill({});
    else if (cast<NSDictionary>(item.object))
      static_cast<LateDictionary*>(item.object.get())->clear();
  }
}

}  // namespace kbx
