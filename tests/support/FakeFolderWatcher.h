// FakeFolderWatcher: notices of folders as a test wants them, and a time that a test can pass.
#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/watch/FolderWatcher.h"

namespace kbx {

/// Watches real folders, but tells what the test says and nothing else. Time stands still except
/// while somebody waits: then it jumps to the moment.
class FakeFolderWatcher final : public FolderWatcher {
 public:
  using Kind = FolderNotice::Kind;

  /// Something happened to the entry of a folder, whose path is the one that it was watched with.
  void tell(Kind kind, const std::filesystem::path& entry, bool isFolder = false,
            std::uint32_t cookie = 0) {
    _notices.push_back(
        {kind, watchOf(entry.parent_path()), entry.filename().string(), isFolder, cookie});
  }
  /// Something happened to a watched folder itself.
  void tellFolder(Kind kind, const std::filesystem::path& folder) {
    _notices.push_back({kind, watchOf(folder)});
  }
  void loseNotices() { _notices.push_back({Kind::Lost}); }

  /// The paths with which folders are watched now, sorted.
  std::vector<std::string> watched() const {
    std::vector<std::string> paths;
    for (const auto& [path, watch] : _watches)
      if (_open.contains(watch)) paths.push_back(path);
    return paths;
  }

  int watch(const std::string& folder) override {
    struct stat status;
    if (::lstat(folder.c_str(), &status) != 0) return -errno;
    if (!S_ISDIR(status.st_mode)) return -ENOTDIR;
    if (refused.contains(folder)) return -refused.at(folder);
    int& watch = _numbers[status.st_ino];
    if (!_open.contains(watch)) {
      if (_open.size() >= limit) return -ENOSPC;
      watch = _next++;
    }
    _open.insert(watch);
    std::erase_if(_watches, [&](const auto& known) { return known.second == watch; });
    const bool isRoot = folder.ends_with("/.");
    _watches[isRoot ? folder.substr(0, folder.size() - 2) : folder] = watch;
    return watch;
  }
  void unwatch(int watch) override { _open.erase(watch); }
  int restart() override {
    _open.clear();
    _notices.clear();
    ++restarts;
    return 0;
  }
  Moment now() override { return time; }
  std::vector<FolderNotice> wait(std::optional<Moment> until) override {
    if (!_notices.empty()) return std::exchange(_notices, {});
    waitedWithoutEnd = !until;
    if (until) time = std::max(time, *until);
    return {};
  }

  Moment time{std::chrono::hours(1)};
  std::size_t limit = 1000;            // how many folders can be watched
  std::map<std::string, int> refused;  // error numbers by path
  int restarts = 0;
  bool waitedWithoutEnd = false;  // the last time that there was nothing to tell

 private:
  int watchOf(const std::filesystem::path& folder) const {
    const auto found = _watches.find(folder.string());
    return found == _watches.end() ? 1'000'000 : found->second;
  }

  std::map<std::uint64_t, int> _numbers;  // watches by inode
  std::map<std::string, int> _watches;    // by path
  std::set<int> _open;
  std::vector<FolderNotice> _notices;
  int _next = 1;
};

}  // namespace kbx
