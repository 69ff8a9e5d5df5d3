// SortedEntries: the entries of a dictionary in the order in which they are written.
#pragma once

#include <algorithm>
#include <vector>

#include "platform/objects/NSDictionary.h"

namespace kbx {

/// The entries by the code units of their keys, which are all strings. Borrowed: valid while the
/// dictionary stays as it is.
inline std::vector<const NSDictionary::Entry*> sortedEntries(const NSDictionary* dictionary) {
  std::vector<const NSDictionary::Entry*> entries;
  entries.reserve(dictionary->count());
  for (const auto& entry : *dictionary) entries.push_back(&entry);
  std::ranges::sort(entries, [](const auto* a, const auto* b) {
    auto* key = static_cast<NSString*>(b->key.get());
    return static_cast<NSString*>(a->key.get())->compare(key) == NSOrderedAscending;
  });
  return entries;
}

}  // namespace kbx
