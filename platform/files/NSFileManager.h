// NSFileManager: operations on files as a whole.
#pragma once

#include <cstddef>

#include "platform/objects/NSObject.h"

namespace kbx {

class NSError;
class NSURL;

/// Safe from any thread.
class KBX_PLATFORM NSFileManager final : public NSObject {
  KBX_OBJECT(NSFileManager, NSObject)
 public:
  /// The one object of the process, never freed. (defaultManager)
  static NSFileManager* defaultManager();

  /// Removes a file or an empty folder. (removeItemAtURL:error:)
  ///
  /// Fails in NSCocoaErrorDomain with the path and an underlying POSIX error: 4 no such file, 513
  /// no permission, 642 read-only volume, 512 anything else.
  bool removeItemAtURL(NSURL* url, Ref<NSError>* error);

  /// The text of a path's bytes (FileNames.h); absent when there are none.
  /// (stringWithFileSystemRepresentation:length:)
  Ref<NSString> stringWithFileSystemRepresentation(const char* path, std::size_t length) const;

 private:
  NSFileManager() = default;
};

}  // namespace kbx
