// NSString: searching and comparing with options.
#include "platform/objects/NSString.h"
#include "platform/text/CompareOptions.h"
#include "platform/text/DisplayOrder.h"
#include "platform/text/FoldedText.h"

namespace kbx {

NSRange NSString::rangeOfString(NSString* text, NSStringCompareOptions options) const {
  if (!text || text->length() == 0) return kRangeNotFound;
  const FoldedText wanted(text, options);
  if (!(options & NSAnchoredSearch)) return FoldedText(this, options).find(wanted);
  return FoldedText(this, options, wanted.length()).findAtStart(wanted);
}

NSComparisonResult NSString::compare(NSString* other, NSStringCompareOptions options) const {
  if (!other) return NSOrderedDescending;
  if (options & kCFCompareLocalized) return DisplayOrder::current().compare(this, other, options);
  return FoldedText(this, options).compare(FoldedText(other, options));
}

NSComparisonResult NSString::caseInsensitiveCompare(NSString* other) const {
  return compare(other, NSCaseInsensitiveSearch);
}

}  // namespace kbx
