// FolderWatcher: what the system tells about folders while it happens.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kbx {

/// Time that only goes forward, for waiting.
using Moment = std::chrono::steady_clock::time_point;

/// One thing that happened in a watched folder, or to it.
struct FolderNotice {
  enum class Kind : std::uint8_t {
    Made,         // an entry is new
    Written,      // an entry was closed by somebody who could write to it
    Touched,      // an entry's bytes or attributes changed
    MovedAway,    // an entry got another name or folder
    MovedHere,    // the same with its new name; the cookie tells which two belong together
    Removed,      // an entry
    FolderMoved,  // the folder itself has another path
    Ended,        // the watch, because the folder or its file system is gone
    Lost,         // notices, because there were too many, or the order of some
  };
  Kind kind;
  int watch = -1;  // what watch() answered; none for Lost
  std::string name = {};
  bool isFolder = false;
  std::uint32_t cookie = 0;
};

/// The system's own watching of folders: one watch for each, not for the folders inside it.
/// Belongs to one thread.
class FolderWatcher {
 public:
  virtual ~FolderWatcher() = default;

  /// Watches a folder; a link is none. Answers the number of the watch, the same for a folder that
  /// has one, whatever its path was then; or the negative error number, -ENOSPC when the system
  /// gives no more watches.
  virtual int watch(const std::string& folder) = 0;
  virtual void unwatch(int watch) = 0;
  /// Ends all watches and drops their notices. Answers zero or the negative error number.
  virtual int restart() = 0;
  virtual Moment now() = 0;
  /// Waits until there are notices, the moment has come (absent: without end), or the process is
  /// wished to end, and answers the notices in the order of what happened. At once when there are
  /// some. Uses no time while it waits, and seldom answers none before the moment.
  virtual std::vector<FolderNotice> wait(std::optional<Moment> until) = 0;
};

/// The system's; absent when there is none, with the error number.
std::unique_ptr<FolderWatcher> makeFolderWatcher(int* failure);

/// How many folders one user may watch, for people; empty when the system does not say.
std::string folderWatchLimit();

}  // namespace kbx
