// PendingChanges: what was seen to change and has yet to be looked at.
#pragma once

#include <list>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/watch/FolderWatcher.h"

namespace kbx {

/// Collects paths until they have settled. Only which paths are to be looked at is kept, never what
/// happened to them: that is found out by looking. Paths are absolute, in bytes.
class PendingChanges {
 public:
  /// How long a file that nobody closed rests before it is taken for finished: one that was linked
  /// into its place, or that its writer keeps open.
  static constexpr std::chrono::milliseconds kRest{200};

  /// A file may be changing still.
  void touch(const std::string& path, Moment now);
  /// A file is what it will be for now, or is gone; or a folder, with all that is in it, or was.
  void settle(const std::string& path);

  /// When something will have settled: a moment long ago when it has; absent when nothing rests.
  std::optional<Moment> deadline() const;
  /// What has settled, which is pending no more.
  std::vector<std::string> take(Moment now);

 private:
  struct Resting {
    std::string path;
    Moment until;
  };
  using Place = std::list<Resting>::iterator;

  std::list<Resting> _resting;  // the one that has rested longest first
  std::unordered_map<std::string_view, Place> _places;
  std::set<std::string> _settled;
};

}  // namespace kbx
