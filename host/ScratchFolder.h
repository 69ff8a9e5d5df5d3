// ScratchFolder: a folder of this process alone, gone when it ends.
#pragma once

#include <string>

namespace kbx {

class ScratchFolder {
 public:
  ScratchFolder();
  /// Removes it with all that is in it.
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  /// Empty when it could not be made.
  const std::string& path() const noexcept { return _path; }
  /// Why it could not be made (an `errno` value); else 0.
  int failure() const noexcept { return _failure; }

 private:
  std::string _path;
  int _failure = 0;
};

}  // namespace kbx
