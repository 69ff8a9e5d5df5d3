#include "platform/objects/NSArray.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/objects/Description.h"
#include "platform/objects/Equality.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/text/Format.h"

namespace kbx {

KBX_CLASS(NSArray)
KBX_CLASS(NSMutableArray)
KBX_ADOPTS(NSArray, NSCoding)

// A list is what calls by selector are most often made on.
[[maybe_unused]] static const bool answersBasics =
    addMethod<&NSArray::count>(NSArray::classObject(), "count") &&
    addMethod<&NSArray::objectAtIndex>(NSArray::classObject(), "objectAtIndex:") &&
    addMethod<&NSMutableArray::addObject>(NSMutableArray::classObject(), "addObject:");

NSArray::~NSArray() = default;

Ref<NSArray> NSArray::array() { return arrayWithElements({}); }

Ref<NSArray> NSArray::arrayWithObjects(std::initializer_list<NSObject*> objects) {
  return arrayWithElements(Elements(objects.begin(), objects.end()));
}

Ref<NSArray> NSArray::arrayWithElements(Elements elements) {
  if (std::ranges::any_of(elements, [](auto& element) { return element == nullptr; }))
    raiseInvalidArgument("-[NSArray initWithObjects:count:]: attempt to insert nil object");
  return Ref<NSArray>::adopt(new NSArray(std::move(elements)));
}

NSObject* NSArray::objectAtIndex(std::size_t index) const {
  if (index >= _elements.size())
    raiseRange("-[NSArray objectAtIndex:]: index " + std::to_string(index) + " beyond bounds of " +
               std::to_string(_elements.size()) + " objects");
  return _elements[index];
}

bool NSArray::containsObject(NSObject* object) const {
  return std::ranges::any_of(_elements, [=](auto& own) { return kbx::isEqual(own, object); });
}

Ref<NSString> NSArray::componentsJoinedByString(NSString* separator) const {
  StringBuilder text;
  for (const auto& element : _elements) {
    if (&element != &_elements.front()) text.append(separator);
    text.append(descriptionOf(element));
  }
  return text.take();
}

Ref<NSArray> NSArray::copy() { return static_cast<NSArray*>(copyObject().get()); }

Ref<NSMutableArray> NSArray::mutableCopy() const {
  return Ref<NSMutableArray>::adopt(new NSMutableArray(_elements));
}

Ref<NSString> NSArray::description() const {
  StringBuilder text;
  appendNested(text, const_cast<NSArray*>(this), 0);
  return text.take();
}

bool NSArray::isEqual(NSObject* other) const {
  return areEqualContainers(const_cast<NSArray*>(this), other);
}

std::size_t NSArray::hash() const { return _elements.size(); }

Ref<NSMutableArray> NSMutableArray::array() {
  return Ref<NSMutableArray>::adopt(new NSMutableArray({}));
}

void NSMutableArray::addObject(NSObject* object) {
  if (!object) raiseInvalidArgument("-[NSMutableArray addObject:]: object cannot be nil");
  _elements.emplace_back(object);
}

void NSMutableArray::addObjectsFromArray(NSArray* other) {
  if (!other) return;
  Elements added(other->begin(), other->end());  // the other may be this very array
  _elements.insert(_elements.end(), added.begin(), added.end());
}

void NSMutableArray::removeAllObjects() { const Elements removed = std::exchange(_elements, {}); }

void NSMutableArray::removeObjectAtIndex(std::size_t index) {
  const Ref<NSObject> removed = objectAtIndex(index);  // dies when the array is whole again
  _elements.erase(_elements.begin() + static_cast<std::ptrdiff_t>(index));
}

Ref<NSObject> NSMutableArray::copyObject() { return arrayWithElements(_elements); }

}  // namespace kbx
