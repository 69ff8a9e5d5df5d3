// NSArray and NSMutableArray: ordered collections.
#pragma once

#include <initializer_list>
#include <vector>

#include "platform/objects/NSObject.h"
#include "platform/objects/NSString.h"

namespace kbx {

class NSMutableArray;

/// An immutable list of objects, none absent. May be shared between threads.
class KBX_PLATFORM NSArray : public NSObject {
  KBX_OBJECT(NSArray, NSObject)
 public:
  using Elements = std::vector<Ref<NSObject>>;

  static Ref<NSArray> array();
  /// Raises NSInvalidArgumentException when an element is absent. (arrayWithObjects:)
  static Ref<NSArray> arrayWithObjects(std::initializer_list<NSObject*> objects);
  static Ref<NSArray> arrayWithElements(Elements elements);

  std::size_t count() const noexcept { return _elements.size(); }
  /// Raises NSRangeException when index >= count(). (objectAtIndex:)
  NSObject* objectAtIndex(std::size_t index) const;
  Elements::const_iterator begin() const noexcept { return _elements.begin(); }
  Elements::const_iterator end() const noexcept { return _elements.end(); }
  /// Whether an equal object is in the list. (containsObject:)
  bool containsObject(NSObject* object) const;
  /// The descriptions of the elements with the separator between them.
  Ref<NSString> componentsJoinedByString(NSString* separator) const;

  Ref<NSArray> copy();
  Ref<NSMutableArray> mutableCopy() const;

  Ref<NSString> description() const override;
  bool isEqual(NSObject* other) const override;
  std::size_t hash() const override;

 protected:
  explicit NSArray(Elements elements) noexcept : _elements(std::move(elements)) {}
  ~NSArray() override;

  Elements _elements;
};

/// A list that grows. Belongs to one thread at a time.
class KBX_PLATFORM NSMutableArray : public NSArray {
  KBX_OBJECT(NSMutableArray, NSArray)
 public:
  static Ref<NSMutableArray> array();

  /// Raises NSInvalidArgumentException when the object is absent. (addObject:)
  void addObject(NSObject* object);
  /// An absent array adds nothing; the array itself may be added. (addObjectsFromArray:)
  void addObjectsFromArray(NSArray* other);
  /// Raises NSRangeException when index >= count(). (removeObjectAtIndex:)
  void removeObjectAtIndex(std::size_t index);
  void removeAllObjects();

  Ref<NSObject> copyObject() override;

 private:
  friend class NSArray;
  explicit NSMutableArray(Elements elements) noexcept : NSArray(std::move(elements)) {}
};

}  // namespace kbx
