// Collections nested as no sender of good will nests them.
#pragma once

#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// An array in an array in an array, `depth` of them, the innermost empty.
inline Ref<NSArray> nestedArrays(std::size_t depth) {
  Ref<NSArray> nested = NSArray::array();
  while (--depth) nested = NSArray::arrayWithObjects({nested.get()});
  return nested;
}

/// A dictionary as the only value of a dictionary, `depth` of them, the innermost empty.
inline Ref<NSDictionary> nestedDictionaries(std::size_t depth) {
  Ref<NSDictionary> nested = NSDictionary::dictionary();
  while (--depth) nested = NSDictionary::dictionaryWithPairs({{"key"_ns, nested}});
  return nested;
}

/// An array that holds an array twice, which holds one twice, and so on: 2^depth times the leaf.
inline Ref<NSArray> doubledArrays(std::size_t depth, NSObject* leaf) {
  Ref<NSArray> doubled = NSArray::arrayWithObjects({leaf});
  while (--depth) doubled = NSArray::arrayWithObjects({doubled.get(), doubled.get()});
  return doubled;
}

}  // namespace kbx
