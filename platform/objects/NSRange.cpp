#include "platform/objects/NSRange.h"

#include <string>

#include "platform/objects/NSString.h"

namespace kbx {

Ref<NSString> NSStringFromRange(NSRange range) {
  return NSString::stringWithUTF8("{" + std::to_string(range.location) + ", " +
                                  std::to_string(range.length) + "}");
}

}  // namespace kbx
