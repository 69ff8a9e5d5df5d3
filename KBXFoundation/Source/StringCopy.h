// StringCopy: a text of its own where a copy is promised.
#pragma once

#include "platform/objects/NSString.h"

namespace kbx {

/// Another object with the same text. Immutable objects are often their own copies; callers of the
/// string utilities are promised one that is not.
inline Ref<NSString> newCopy(const NSString* string) {
  return string->visitUnits([](auto units) {
    if constexpr (sizeof(units[0]) == 1)
      return NSString::stringWithUTF8({units.data(), units.size()});
    else
      return NSString::stringWithUTF16({units.data(), units.size()});
  });
}

}  // namespace kbx
