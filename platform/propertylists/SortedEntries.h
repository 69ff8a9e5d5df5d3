// SortedEntries: the entries of a dictionary in the order in which they are written.
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

#include "platform/objects/NSDictionary.h"

namespace kbx {

/// Whether a text comes before another by its code units.
inline bool comesBefore(const NSString& a, NSString* b) {
  if (!a.isASCII() || !b->isASCII()) return a.compare(b) == NSOrderedAscending;
  const auto bytes = [](const NSString& text) {
    return text.visitUnits([](auto units) -> std::string_view {
      if constexpr (sizeof(units[0]) == 1) return {units.data(), units.size()};
      return {};
    });
  };
  return bytes(a) < bytes(*b);
}

/// The entries by the code units of their keys, which are all strings. Borrowed: valid while the
/// dictionary stays as it is.
inline std::vector<const NSDictionary::Entry*> sortedEntries(const NSDictionary* dictionary) {
  std::vector<const NSDictionary::Entry*> entries;
  entries.reserve(dictionary->count());
  for (const auto& entry : *dictionary) entries.push_back(&entry);
  std::ranges::sort(entries, [](const auto* a, const auto* b) {
    return comesBefore(*static_cast<NSString*>(a->key.get()), static_cast<NSString*>(b->key.get()));
  });
  return entries;
}

}  // namespace kbx
