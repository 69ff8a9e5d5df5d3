#include "NSString+KBXComparisons.h"

#include "platform/text/CompareOptions.h"

namespace kbx {

NSComparisonResult kbxCompareForDisplay(NSString* string, NSString* other) {
  if (!string) return NSOrderedSame;
  return string->compare(other, NSCaseInsensitiveSearch | kCFCompareLocalized | NSNumericSearch);
}

NSComparisonResult kbxCompareLength(NSString* string, NSString* other) {
  const std::size_t mine = string ? string->length() : 0, theirs = other ? other->length() : 0;
  if (!string || mine == theirs) return NSOrderedSame;
  return mine < theirs ? NSOrderedAscending : NSOrderedDescending;
}

}  // namespace kbx
