#include "platform/runtime/FastEnumeration.h"

#include "platform/objects/NSClass.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSException.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

std::size_t countOf(NSObject* collection) {
  auto* array = cast<NSArray>(collection);
  return array ? array->count() : static_cast<NSDictionary*>(collection)->count();
}

[[noreturn]] void raiseMutated(NSObject* collection) {
  auto reason = stringWithFormat("Collection <%s: %p> was mutated while being enumerated."_ns,
                                 collection->objectClass()->name().c_str(),
                                 static_cast<const void*>(collection));
  NSException::exceptionWithName("NSGenericException"_ns, reason, nullptr)->raise();
}

}  // namespace

FastEnumeration::FastEnumeration(NSObject* collection) : _collection(collection) {
  if (!collection) return;
  if (auto* array = cast<NSArray>(collection))
    _members = array->copy();
  else if (auto* dictionary = cast<NSDictionary>(collection))
    _members = dictionary->allKeys();
  else
    raiseUnrecognizedSelector(collection, "countByEnumeratingWithState:objects:count:");
}

NSObject* FastEnumeration::memberNow(std::size_t index) const {
  if (auto* array = cast<NSArray>(_collection)) return array->objectAtIndex(index);
  return static_cast<NSDictionary*>(_collection.get())
      ->begin()[static_cast<std::ptrdiff_t>(index)]
      .key;
}

Ref<NSObject> FastEnumeration::next() {
  if (_index == count()) return nullptr;
  NSObject* member = _members->objectAtIndex(_index);
  if (countOf(_collection) != count() || !isSame(memberNow(_index), member))
    raiseMutated(_collection);
  ++_index;
  return member;
}

}  // namespace kbx
