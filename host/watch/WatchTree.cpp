#include "host/watch/WatchTree.h"

#include <filesystem>
#include <utility>

#include "host/watch/Paths.h"

namespace kbx {

std::string WatchTree::pathOf(int watch) const {
  std::vector<const std::string*> names;
  for (int at = watch; at != kNone; at = _folders.at(at).parent)
    names.push_back(&_folders.at(at).name);
  std::string path = *names.back();
  for (auto name = names.rbegin() + 1; name != names.rend(); ++name) path = entryOf(path, **name);
  return path;
}

int WatchTree::childOf(int folder, const std::string& name) const {
  const auto& children = _folders.at(folder).children;
  const auto found = children.find(name);
  return found == children.end() ? kNone : found->second;
}

int WatchTree::descendantOf(int folder, const std::string& names) const {
  int at = folder;
  const std::filesystem::path below(names);
  for (auto name = below.begin(); name != below.end() && at != kNone; ++name)
    at = childOf(at, name->string());
  return at;
}

void WatchTree::hang(int watch, int parent, const std::string& name) {
  Folder& folder = _folders[watch];
  folder.parent = parent;
  folder.name = name;
  if (parent != kNone) _folders.at(parent).children[name] = watch;
}

void WatchTree::unhang(int watch) {
  Folder& folder = _folders.at(watch);
  if (folder.parent == kNone) return;
  std::string path = pathOf(watch);
  _folders.at(folder.parent).children.erase(folder.name);
  folder.parent = kNone;
  folder.name = std::move(path);
}

std::vector<int> WatchTree::remove(int watch) {
  unhang(watch);
  std::vector<int> removed{watch};
  for (std::size_t i = 0; i < removed.size(); ++i) {
    const auto found = _folders.find(removed[i]);
    for (const auto& [name, child] : found->second.children) removed.push_back(child);
    _folders.erase(found);
  }
  return removed;
}

}  // namespace kbx
