#include "platform/objects/NSNull.h"

#include "platform/objects/NSClass.h"
#include "platform/objects/NSString.h"

namespace kbx {

KBX_CLASS(NSNull)
KBX_ADOPTS(NSNull, NSCoding)

NSNull* NSNull::null() {
  static auto* const marker = new NSNull;
  return marker;
}

Ref<NSString> NSNull::description() const { return "<null>"_ns; }

}  // namespace kbx
