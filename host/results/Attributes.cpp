#include "host/results/Attributes.h"

#include <algorithm>

#include "platform/text/Format.h"

namespace kbx {

std::vector<Attribute> sortedAttributes(NSDictionary* attributes) {
  std::vector<Attribute> sorted;
  sorted.reserve(attributes->count());
  for (const auto& [key, value] : *attributes) sorted.push_back({descriptionOf(key), value});
  std::ranges::stable_sort(sorted, [](const Attribute& a, const Attribute& b) {
    return a.name->compare(b.name) == NSOrderedAscending;
  });
  return sorted;
}

}  // namespace kbx
