// FakeFiles: folders, files and links that exist for a test alone, and that may vanish.
#pragma once

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "platform/files/SystemFiles.h"

namespace kbx {

/// A made-up tree for questions about what is there; opening and writing reach the real disk.
/// Installed while it lives. For one thread.
class FakeFiles final : public SystemFiles {
 public:
  FakeFiles() { folder("/"); }

  void folder(const std::string& path) { add(path, FileStatus::Kind::Directory, ""); }
  void file(const std::string& path) { add(path, FileStatus::Kind::Regular, ""); }
  void link(const std::string& path, const std::string& target) {
    add(path, FileStatus::Kind::SymbolicLink, target);
  }
  void vanish(const std::string& path) { _items.erase(path); }
  /// Makes two paths name one file, as a mount in two places does.
  void same(const std::string& path, const std::string& other) {
    _items.at(path).status.number = _items.at(other).status.number;
  }

  int statusOfPath(const std::string& path, FileStatus* status) override {
    return statusOf(path, true, status);
  }
  int statusOfLink(const std::string& path, FileStatus* status) override {
    return statusOf(path, false, status);
  }
  int readLink(const std::string& path, std::string* target) override {
    FileStatus status;
    const int result = statusOf(path, false, &status);
    if (result < 0) return result;
    if (status.kind != FileStatus::Kind::SymbolicLink) return -EINVAL;
    *target = _found->target;
    return 0;
  }

  int questions = 0;
  std::function<void(const std::string& path)> beforeQuestion;  // may change the tree

 private:
  struct Item {
    FileStatus status;
    std::string target;
  };
  void add(const std::string& path, FileStatus::Kind kind, const std::string& target) {
    _items[path] = {{kind, 0, 0644, 1, ++_numbers}, target};
  }
  int statusOf(const std::string& path, bool followsLast, FileStatus* status) {
    ++questions;
    if (beforeQuestion) beforeQuestion(path);
    const int result = find(path, followsLast);
    if (result == 0) *status = _found->status;
    return result;
  }
  /// Walks down the path as a system does. 0 with the item in _found, or the error number.
  int find(std::string ahead, bool followsLast) {
    std::string place;
    int links = 0;
    _found = &_items.at("/");
    while (!ahead.empty()) {
      const std::size_t end = std::min(ahead.find('/'), ahead.size());
      const std::string name = ahead.substr(0, end);
      ahead.erase(0, end + 1);
      if (name.size() > 255) return -ENAMETOOLONG;
      if (name.empty() || name == ".") continue;
      if (_found->status.kind != FileStatus::Kind::Directory) return -ENOTDIR;
      const std::string parent = place;
      place = name == ".." ? place.substr(0, place.rfind('/')) : place + "/" + name;
      auto item = _items.find(place.empty() ? "/" : place);
      if (item == _items.end()) return -ENOENT;
      _found = &item->second;
      const bool isLink = _found->status.kind == FileStatus::Kind::SymbolicLink;
      if (!isLink || (ahead.empty() && !followsLast)) continue;
      if (++links > 40) return -ELOOP;
      ahead = _found->target + "/" + ahead;
      place = ahead.starts_with('/') ? "" : parent;
      _found = &_items.at(place.empty() ? "/" : place);
    }
    return 0;
  }

  std::map<std::string, Item> _items;
  const Item* _found = nullptr;  // by the last walk
  std::uint64_t _numbers = 0;
  ScopedService<FileSystem> _installed{*this};
};

}  // namespace kbx
