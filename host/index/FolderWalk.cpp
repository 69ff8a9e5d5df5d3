#include "host/index/FolderWalk.h"

#include <algorithm>
#include <cerrno>

#include "host/import/MessageNames.h"
#include "platform/files/FileSystem.h"

namespace kbx {
namespace {

std::string joined(const std::string& folder, std::string_view name) {
  std::string path = folder;
  if (!path.ends_with('/')) path += '/';
  return path.append(name);
}

bool isHidden(std::string_view name) { return name.starts_with('.'); }

/// The folders in a Maildir have names that begin with a dot, and so have those that other programs
/// hide beside the mail.
bool isMaildir(const std::string& path) { return isMaildirFolder(path + "/cur"); }

/// A look at the name first: asking costs more than all else that is done for a folder.
bool holdsMaildirMessages(const std::string& path) {
  return (path.ends_with("/cur") || path.ends_with("/new")) && isMaildirFolder(path);
}

bool isBefore(const FolderEntry& one, const FolderEntry& other) {
  const std::size_t length = std::min(one.name.size(), other.name.size());
  const int order = one.name.compare(0, length, other.name, 0, length);
  if (order != 0) return order < 0;
  // Of a name that begins with another one, the next byte counts; a folder's next byte is a slash.
  const auto following = [&](const FolderEntry& entry) -> unsigned char {
    if (entry.name.size() > length) return static_cast<unsigned char>(entry.name[length]);
    return entry.isFolder ? '/' : '\0';
  };
  return following(one) < following(other);
}

}  // namespace

bool isInside(std::string_view path, std::string_view folder) {
  if (folder.ends_with('/')) folder.remove_suffix(1);  // the root of all
  return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

std::optional<FoundFile> FolderWalk::next() {
  if (!_hasBegun)
    if (auto found = begin()) return found;
  while (!_folders.empty()) {
    Folder& folder = _folders.back();
    if (folder.position == folder.entries.size()) {
      _folders.pop_back();
      continue;
    }
    FolderEntry& entry = folder.entries[folder.position++];
    std::string path = joined(folder.path, entry.name);
    if (!entry.isFolder) return FoundFile{std::move(path), entry.state};
    if (isHidden(entry.name) && !isMaildir(path)) continue;
    if (auto failed = enter(std::move(path))) return failed;
  }
  return std::nullopt;
}

std::optional<FoundFile> FolderWalk::begin() {
  _hasBegun = true;
  if (_kind == Root::Seen && !isThere()) return std::nullopt;
  FolderEntry root;
  const int failure = FolderReader::current().stateOfFile(_root, &root);
  if (_kind == Root::Seen && (failure == ENOENT || failure == ENOTDIR)) return std::nullopt;
  if (failure || !root.isFolder) return FoundFile{_root, root.state, failure};
  return enter(_root);
}

/// Whether a walk of the folder around it would give the root, or walk it.
bool FolderWalk::isThere() const {
  FileStatus status;
  const int failure = FileSystem::current().statusOfLink(_root, &status);
  if (failure) return failure != -ENOENT && failure != -ENOTDIR;
  if (status.kind != FileStatus::Kind::Regular) return status.isFolder();
  const std::string_view name = std::string_view(_root).substr(_root.rfind('/') + 1);
  return !isHidden(name) && (isMessageName(name) || isMaildirMessage(_root));
}

/// Reads a folder, which is the one to walk then; answers one that cannot be read.
std::optional<FoundFile> FolderWalk::enter(std::string path) {
  const bool isOfMaildir = holdsMaildirMessages(path);
  const auto isMessage = [&](std::string_view name) {
    return !isHidden(name) && (isMessageName(name) || (isOfMaildir && isMaildirMessageName(name)));
  };
  std::vector<FolderEntry> entries;
  const int failure = FolderReader::current().read(path, isMessage, &entries);
  // What has vanished meanwhile, or given its place to a link, is not there.
  const bool isGone = failure == ENOENT || failure == ENOTDIR || failure == ELOOP;
  if (isGone && (_kind == Root::Seen || !_folders.empty())) return std::nullopt;
  if (failure) return FoundFile{std::move(path), {}, failure};
  std::ranges::sort(entries, isBefore);
  _folders.push_back({std::move(path), std::move(entries)});
  return std::nullopt;
}

}  // namespace kbx
