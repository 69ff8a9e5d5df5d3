// DisplayOrder: the order in which people of a language expect texts in a list.
#pragma once

#include <mutex>
#include <string>

#include "platform/objects/NSString.h"
#include "platform/text/CompareOptions.h"

struct UCollator;

namespace kbx {

class Environment;

/// The order of one language. Safe from any thread.
class KBX_PLATFORM DisplayOrder {
 public:
  /// locale  "de_DE" and the like; empty, or a language that is not known: the order that no
  ///         language changed
  explicit DisplayOrder(std::string locale);
  ~DisplayOrder();
  DisplayOrder(const DisplayOrder&) = delete;
  DisplayOrder& operator=(const DisplayOrder&) = delete;

  /// The order of the language that the process was started with. Asked once; never freed.
  static const DisplayOrder& current();

  /// options  NSCaseInsensitiveSearch: letters that differ in case alone are the same;
  ///          NSNumericSearch: runs of digits by their number. Others do not count.
  ///
  /// ASCII texts in the usual order are compared without the collation library.
  NSComparisonResult compare(const NSString* a, const NSString* b,
                             NSStringCompareOptions options) const;

 private:
  struct Collator {
    std::once_flag isMade;
    UCollator* made = nullptr;
  };

  const UCollator* collator(bool ignoresCase, bool isNumeric) const;

  const std::string _locale;
  const bool _hasUsualASCIIOrder;
  mutable Collator _collators[4];
};

/// The language that the variables LC_ALL, LC_COLLATE and LANG ask for, the first of them that is
/// set and not empty; "" for the C locale and without any.
KBX_PLATFORM std::string collationLocale(Environment& environment);

}  // namespace kbx
