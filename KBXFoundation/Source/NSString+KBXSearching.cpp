#include "NSString+KBXSearching.h"

#include "platform/text/CompareOptions.h"

namespace kbx {
namespace {

constexpr auto kDiacriticPrefix =
    NSAnchoredSearch | NSDiacriticInsensitiveSearch | NSWidthInsensitiveSearch;
static_assert(kDiacriticPrefix == 392);
static_assert((kDiacriticPrefix | NSCaseInsensitiveSearch) == 393);

bool isFound(NSString* string, NSString* other, NSStringCompareOptions options) {
  return string && string->rangeOfString(other, options).location != NSNotFound;
}

}  // namespace

bool kbxContainsString(NSString* string, NSString* other) {
  return string && string->rangeOfString(other).location != NSNotFound;
}

bool kbxCaseInsensitiveContainsString(NSString* string, NSString* other) {
  return isFound(string, other, NSCaseInsensitiveSearch);
}

bool kbxHasCaseInsensitivePrefix(NSString* string, NSString* prefix) {
  return isFound(string, prefix, NSAnchoredSearch | NSCaseInsensitiveSearch);
}

bool kbxCaseInsensitiveIsEqual(NSString* string, NSObject* other) {
  auto* text = cast<NSString>(other);
  return string && text && string->caseInsensitiveCompare(text) == NSOrderedSame;
}

bool kbxHasDiacriticPrefix(NSString* string, NSString* prefix) {
  return isFound(string, prefix, kDiacriticPrefix);
}

bool kbxHasDiacriticInsensitivePrefix(NSString* string, NSString* prefix) {
  return isFound(string, prefix, kDiacriticPrefix | NSCaseInsensitiveSearch);
}

}  // namespace kbx
