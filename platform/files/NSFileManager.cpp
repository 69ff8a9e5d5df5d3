#include "platform/files/NSFileManager.h"

#include "platform/files/FileErrors.h"
#include "platform/files/FileNames.h"
#include "platform/files/FileSystem.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"

namespace kbx {

KBX_CLASS(NSFileManager)

NSFileManager* NSFileManager::defaultManager() {
  static auto* const manager = new NSFileManager;
  return manager;
}

bool NSFileManager::removeItemAtURL(NSURL* url, Ref<NSError>* error) {
  if (!url) raiseInvalidArgument("-[NSFileManager removeItemAtURL:error:]: URL is nil");
  const int result = FileSystem::current().remove(url->fileSystemRepresentation());
  if (result < 0 && error) *error = fileError(url, FileAction::Removing, -result);
  return result >= 0;
}

Ref<NSString> NSFileManager::stringWithFileSystemRepresentation(const char* path,
                                                                std::size_t length) const {
  return path ? kbx::stringWithFileSystemRepresentation({path, length}) : nullptr;
}

}  // namespace kbx
