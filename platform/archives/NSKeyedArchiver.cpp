#include "platform/archives/NSKeyedArchiver.h"

#include "platform/archives/ArchiveWriter.h"
#include "platform/objects/NSException.h"

namespace kbx {

KBX_CLASS(NSKeyedArchiver)

Ref<NSData> NSKeyedArchiver::archivedDataWithRootObject(NSObject* root) {
  return archiveWithRoot(root);
}

void raiseInvalidArchiveOperation(std::string_view reason) {
  NSException::exceptionWithName(NSInvalidArchiveOperationException(),
                                 NSString::stringWithLossyUTF8(reason), nullptr)
      ->raise();
}

}  // namespace kbx
