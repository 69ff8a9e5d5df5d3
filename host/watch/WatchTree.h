// WatchTree: which folder has which watch, and which lies inside which.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace kbx {

/// A folder knows its name alone, so a move of all that lies in it is one change. Knows nothing of
/// the disk.
class WatchTree {
 public:
  static constexpr int kNone = -1;

  bool contains(int watch) const { return _folders.contains(watch); }
  std::size_t size() const { return _folders.size(); }
  void clear() { _folders.clear(); }

  std::string pathOf(int watch) const;
  /// Whether it hangs in no other folder.
  bool isRoot(int watch) const { return _folders.at(watch).parent == kNone; }
  /// kNone where no folder of this name is known.
  int childOf(int folder, const std::string& name) const;
  /// The same for several names with slashes between them; the folder itself for none.
  int descendantOf(int folder, const std::string& names) const;

  /// Puts a folder, with all that lies in it, into another one. One whose parent is kNone has its
  /// whole path for a name.
  void hang(int watch, int parent, const std::string& name);
  /// Takes it out of its parent; it stays known, under its whole path.
  void unhang(int watch);
  /// Forgets a folder and all that lie in it, and gives their watches.
  std::vector<int> remove(int watch);

 private:
  struct Folder {
    int parent = kNone;
    std::string name;
    std::map<std::string, int> children;  // watches by name
  };

  std::unordered_map<int, Folder> _folders;  // by watch
};

}  // namespace kbx
