#include "NSString+KBXQueryStrings.h"

#include <algorithm>
#include <string>
#include <vector>

#include "NSString+KBXPercentEscapes.h"
#include "platform/files/NSURLComponents.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSException.h"
#include "platform/system/OperatingSystem.h"
#include "platform/text/Format.h"
#include "platform/text/PercentEscapes.h"

namespace kbx {
namespace {

struct Pair {
  NSString* name;
  NSString* value;
};

NSString* textOf(NSObject* object, const char* selector) {
  if (auto* string = cast<NSString>(object)) return string;
  raiseUnrecognizedSelector(object, selector);
}

std::vector<Pair> sortedPairs(NSDictionary* dictionary) {
  std::vector<Pair> pairs;
  for (const auto& [key, value] : *dictionary)
    pairs.push_back({textOf(key, "caseInsensitiveCompare:"), textOf(value, "length")});
  std::ranges::stable_sort(pairs, [](const Pair& a, const Pair& b) {
    return a.name->caseInsensitiveCompare(b.name) == NSOrderedAscending;
  });
  return pairs;
}

/// What a query may hold, without what servers take for a separator or a blank; with what the
/// components have escaped or put between already.
const std::string& allowedBehindComponents() {
  static const std::string characters = [] {
    std::string allowed(kURLQueryAllowedCharacters);
    std::erase_if(allowed, [](char c) { return c == ';' || c == '+'; });
    return allowed + "&=%";
  }();
  return characters;
}

Ref<NSString> queryByComponents(const std::vector<Pair>& pairs) {
  auto items = NSMutableArray::array();
  for (const Pair& pair : pairs)
    items->addObject(NSURLQueryItem::queryItemWithName(pair.name, pair.value));
  auto components = NSURLComponents::components();
  components->setQueryItems(items);
  return stringByAddingPercentEncoding(components->percentEncodedQuery(),
                                       allowedBehindComponents());
}

Ref<NSString> queryByFormat(const std::vector<Pair>& pairs) {
  auto pieces = NSMutableArray::array();
  for (const Pair& pair : pairs)
    pieces->addObject(stringWithFormat("%@=%@"_ns, kbxEncodeForQueryString(pair.name),
                                       kbxEncodeForQueryString(pair.value)));
  return pieces->componentsJoinedByString("&"_ns);
}

}  // namespace

Ref<NSMutableDictionary> kbxQueryStringDictionary(NSString* string) {
  if (!string) return nullptr;
  auto dictionary = NSMutableDictionary::dictionary();
  const Ref<NSArray> pieces = string->componentsSeparatedByString("&"_ns);
  for (const Ref<NSObject>& piece : *pieces) {
    const Ref<NSArray> parts = cast<NSString>(piece)->componentsSeparatedByString("="_ns);
    if (parts->count() != 2) continue;
    auto name = kbxDecodePercentEscapes(cast<NSString>(parts->objectAtIndex(0)));
    auto value = kbxDecodePercentEscapes(cast<NSString>(parts->objectAtIndex(1)));
    if (name && value) dictionary->setObjectForKey(value, name);
  }
  return dictionary;
}

Ref<NSString> kbxQueryStringWithDictionary(NSDictionary* dictionary) {
  if (!dictionary) return nullptr;
  const std::vector<Pair> pairs = sortedPairs(dictionary);
  return isAvailable({10, 10, 0}) ? queryByComponents(pairs) : queryByFormat(pairs);
}

}  // namespace kbx
