// RealHomeDirectory: the user's own home folder, remembered once the system has told it.
#pragma once

#include <mutex>

#include "platform/files/NSURL.h"

namespace kbx {

/// What is behind kbxRealHomeDirectoryURL(), which keeps one for the process. Any thread.
class RealHomeDirectory {
 public:
  /// See kbxRealHomeDirectoryURL(). Holds the lock all the while; the same thread may come again,
  /// as a log writer could that asks for the folder.
  Ref<NSURL> url();

 private:
  std::recursive_mutex _lock;
  Ref<NSURL> _cachedURL;
};

}  // namespace kbx
