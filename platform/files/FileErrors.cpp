#include "platform/files/FileErrors.h"

#include <cerrno>

#include "platform/files/NSURL.h"
#include "platform/objects/NSArray.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

NSCocoaErrorCode readingCode(int number) {
  switch (number) {
    case ENOENT:
    case ENOTDIR:
      return NSFileReadNoSuchFileError;
    case EACCES:
    case EPERM:
      return NSFileReadNoPermissionError;
    case EFBIG:
    case EOVERFLOW:
      return NSFileReadTooLargeError;
    default:
      return NSFileReadUnknownError;
  }
}

NSCocoaErrorCode changingCode(int number) {
  switch (number) {
    case ENOENT:
    case ENOTDIR:
      return NSFileNoSuchFileError;
    case EACCES:
    case EPERM:
      return NSFileWriteNoPermissionError;
    case EEXIST:
      return NSFileWriteFileExistsError;
    case ENOSPC:
    case EDQUOT:
      return NSFileWriteOutOfSpaceError;
    case EROFS:
      return NSFileWriteVolumeReadOnlyError;
    default:
      return NSFileWriteUnknownError;
  }
}

Ref<NSMutableDictionary> userInfo(NSURL* url, int number) {
  auto info = NSMutableDictionary::dictionary();
  info->setObjectForKey(url->path(), NSFilePathErrorKey());
  info->setObjectForKey(posixError(number), NSUnderlyingErrorKey());
  return info;
}

}  // namespace

Ref<NSError> fileError(NSURL* url, FileAction action, int number) {
  auto info = userInfo(url, number);
  if (action == FileAction::Removing)
    info->setObjectForKey(NSArray::arrayWithObjects({"Remove"_ns}), NSUserStringVariantErrorKey());
  const bool isReading = action == FileAction::Reading;
  return NSError::errorWithDomain(NSCocoaErrorDomain(),
                                  isReading ? readingCode(number) : changingCode(number), info);
}

Ref<NSError> notRegularFileError(NSURL* url, bool isDirectory) {
  auto info = userInfo(url, isDirectory ? EISDIR : ENOTSUP);
  const char* what = isDirectory ? "a folder" : "no regular file";
  info->setObjectForKey(stringWithFormat("The file “%@” couldn’t be opened because it is %s."_ns,
                                         url->lastPathComponent(), what),
                        NSLocalizedDescriptionKey());
  return NSError::errorWithDomain(NSCocoaErrorDomain(), NSFileReadUnknownError, info);
}

}  // namespace kbx
