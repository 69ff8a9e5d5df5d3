// FileLock: keeps other processes, and other holders in this one, out while a file is changed.
#pragma once

#include <chrono>
#include <string>

#include "platform/Export.h"

namespace kbx {

/// Holds the lock of a file while it lives. The file is made when it is not there, and stays.
///
/// Where the file system knows no locks, nobody is kept out and the lock counts as held.
class KBX_PLATFORM FileLock {
 public:
  /// path      in the file system's form
  /// patience  how long to wait for another holder
  FileLock(const std::string& path, std::chrono::milliseconds patience);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  bool isHeld() const noexcept { return _result == 0; }
  /// Zero when it is held, else the negative error number: -EWOULDBLOCK for another holder.
  int result() const noexcept { return _result; }

 private:
  int _descriptor = -1;
  int _result = 0;
};

}  // namespace kbx
