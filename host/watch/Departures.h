// Departures: what has moved away, until it is told where to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/watch/FolderWatcher.h"
#include "host/watch/WatchTree.h"

namespace kbx {

struct Departure {
  std::string path;  // the former one
  bool isFolder;
  int watch;  // of a folder that has one; otherwise WatchTree::kNone
  Moment until;
};

/// Each is known by the number that the notices of both its paths have.
class Departures {
 public:
  void add(std::uint32_t cookie, Departure departure);
  /// Absent where none is known.
  std::optional<Departure> take(std::uint32_t cookie);
  /// Those for which it is too late.
  std::vector<Departure> takeExpired(Moment now);
  /// When the first of them will be; absent when there is none.
  std::optional<Moment> deadline() const;
  /// The watch is no longer theirs.
  void loseWatch(int watch);
  void clear() { _departures.clear(); }

 private:
  std::unordered_map<std::uint32_t, Departure> _departures;  // by cookie
};

}  // namespace kbx
