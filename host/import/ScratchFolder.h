// ScratchFolder: a folder of this process alone, gone when it ends.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace kbx {

/// Only the user can look into it. What processes that were killed have left behind is removed
/// when another one makes a folder in the same place.
class ScratchFolder {
 public:
  enum class Place : std::uint8_t {
    Disk,   // where TMPDIR says, else /tmp
    Memory  // XDG_RUNTIME_DIR or /dev/shm, which are lost with the power; else on disk
  };

  explicit ScratchFolder(Place place = Place::Disk);
  /// A folder that another process has made for this one, and removes; or why it could not (an
  /// `errno` value).
  explicit ScratchFolder(std::string path, int failure = 0)
      : _path(std::move(path)), _failure(failure) {}
  /// Removes what it has made, with all that is in it.
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  /// Removes what is in it.
  void clear();

  /// Empty when it could not be made.
  const std::string& path() const noexcept { return _path; }
  /// Why it could not be made (an `errno` value); else 0.
  int failure() const noexcept { return _failure; }

 private:
  bool makeIn(const std::string& parent);

  std::string _path;
  int _failure = 0;
  int _lock = -1;  // the folder, open and locked: the sign for others that its process lives
};

}  // namespace kbx
