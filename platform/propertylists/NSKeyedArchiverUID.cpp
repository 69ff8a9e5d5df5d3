#include "platform/propertylists/NSKeyedArchiverUID.h"

#include "platform/objects/NSClass.h"

namespace kbx {

KBX_CLASS(NSKeyedArchiverUID)

Ref<NSKeyedArchiverUID> NSKeyedArchiverUID::UIDWithValue(std::uint64_t value) {
  return Ref<NSKeyedArchiverUID>::adopt(new NSKeyedArchiverUID(value));
}

}  // namespace kbx
