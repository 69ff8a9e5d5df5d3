// PropertyListReading: what the readers of property lists have in common.
#pragma once

#include <string>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"

namespace kbx {

/// Levels of containers that are written and read, the outermost counted.
inline constexpr std::size_t kDeepestPropertyList = 512;

/// What came of reading: a list, or what is wrong and where, as the end of a sentence.
struct PropertyListReading {
  Ref<NSObject> list;
  std::string fault;
};

inline Ref<NSObject> arrayThatMayChange(NSArray::Elements elements, bool isMutable) {
  auto array = NSArray::arrayWithElements(std::move(elements));
  return isMutable ? Ref<NSObject>(array->mutableCopy()) : Ref<NSObject>(array);
}

inline Ref<NSObject> dictionaryThatMayChange(NSMutableDictionary* entries, bool isMutable) {
  return isMutable ? Ref<NSObject>(entries) : Ref<NSObject>(entries->copy());
}

}  // namespace kbx
