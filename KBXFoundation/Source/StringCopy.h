// StringCopy: a text of its own where a copy is promised.
#pragma once

#include "platform/objects/NSString.h"

namespace kbx {

/// Another object with the same text. Immutable objects are often their own copies; callers of the
/// string utilities are promised one that is not.
inline Ref<NSString> newCopy(const NSString* string) {
  if (const auto bytes = string->keptUTF8()) return NSString::stringWithUTF8(*bytes);
  return string->visitUnits([](auto units) {
    return NSString::stringByTakingUTF16(std::u16string(units.begin(), units.end()));
  });
}

}  // namespace kbx
