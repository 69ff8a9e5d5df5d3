#include "host/watch/WatchedFolders.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "host/watch/Paths.h"
#include "host/watch/WatchedNames.h"
#include "platform/files/FileSystem.h"

namespace kbx {
namespace {

using Kind = FolderNotice::Kind;

bool isHere(Kind kind) { return kind == Kind::Made || kind == Kind::MovedHere; }

/// A Maildir is known by them, so when one is new, others are seen in another light.
bool isMaildirName(const std::string& name) {
  return name == "cur" || name == "new" || name == "tmp";
}

}  // namespace

// ---- The watches ----------------------------------------------------------------------------

int WatchedFolders::watchOf(const std::string& path) const {
  for (const auto& [root, known] : _present) {
    if (path == root) return known.watch;
    if (!isBelow(path, root)) continue;
    return _tree.descendantOf(known.watch, path.substr(root == "/" ? 1 : root.size() + 1));
  }
  return kNone;
}

/// Whether what is in the folder belongs to the mail. Other folders are watched, because a hidden
/// one may become a Maildir, but nothing in them is.
bool WatchedFolders::isWalked(const std::string& folder) const {
  return _present.contains(folder) || isWatchedFolder(folder);
}

void WatchedFolders::forget(int watch) {
  for (const int removed : _tree.remove(watch)) _watcher.unwatch(removed);
}

void WatchedFolders::refuse(const std::string& path, int failure) {
  const bool isGone = failure == ENOENT || failure == ENOTDIR || failure == ELOOP;
  if (isGone || failure == EEXIST) return;
  if (failure != ENOSPC) return _events.push_back({Event::Kind::Refused, path, failure});
  _limited.push_back(path);
  if (!_hasToldLimit) _events.push_back({Event::Kind::Limited, path, failure});
  _hasToldLimit = true;
}

/// Whether the folder at the path is also there under the path by which it is known: mounted twice.
bool WatchedFolders::isOtherNameOf(int watch, const std::string& path) const {
  FileStatus known, named;
  FileSystem& files = FileSystem::current();
  return files.statusOfLink(_tree.pathOf(watch), &known) == 0 &&
         files.statusOfLink(path, &named) == 0 && known.isSameFile(named);
}

/// The watch of a folder that had none, or that has moved without a notice; otherwise the negative
/// error number: -EEXIST for one that is watched under another name, since a folder that is mounted
/// inside itself has no end.
int WatchedFolders::watch(const std::string& path) {
  int watch = _watcher.watch(path);
  if (watch >= 0 && _tree.contains(watch)) {
    if (isOtherNameOf(watch, path)) return -EEXIST;
    _departures.loseWatch(watch);
    forget(watch);
    watch = _watcher.watch(path);
  }
  return watch;
}

void WatchedFolders::enter(int parent, const std::string& name) {
  for (std::vector<Ahead> ahead{{parent, name}}; !ahead.empty();) {
    const Ahead next = std::move(ahead.back());
    ahead.pop_back();
    const std::string path = entryOf(_tree.pathOf(next.parent), next.name);
    if (isDeliveryFolder(path)) continue;
    int found = _tree.childOf(next.parent, next.name);
    if (found == kNone) found = watch(path);
    if (found < 0) {
      refuse(path, -found);
      continue;
    }
    _tree.hang(found, next.parent, next.name);
    addFoldersIn(found, ahead);
  }
}

void WatchedFolders::enterFoldersIn(int folder) {
  std::vector<Ahead> ahead;
  addFoldersIn(folder, ahead);
  for (const Ahead& next : ahead) enter(next.parent, next.name);
}

/// Read after the folder has its watch, so that a folder that is not seen here gets a notice. Those
/// that are known are walked again: what was made in one while it moved had a path that was gone.
void WatchedFolders::addFoldersIn(int folder, std::vector<Ahead>& ahead) {
  const std::string path = _tree.pathOf(folder);
  if (!isWalked(path)) return;
  std::error_code failure, unknown;
  std::filesystem::directory_iterator at(path, failure);
  for (; !failure && at != std::filesystem::directory_iterator(); at.increment(failure)) {
    if (!at->is_symlink(unknown) && at->is_directory(unknown))
      ahead.push_back({folder, at->path().filename().string()});
  }
  if (failure) refuse(path, failure.value());
}

// ---- Roots ----------------------------------------------------------------------------------

WatchedFolders::Identity WatchedFolders::identityOf(const std::string& path) {
  FileStatus status;
  const bool isThere = FileSystem::current().statusOfPath(path, &status) == 0 && status.isFolder();
  return isThere ? Identity{status.device, status.number} : Identity{};
}

void WatchedFolders::begin() {
  _tree.clear();
  _departures.clear();
  _present.clear();
  _lost.clear();
  _limited.clear();
  _hasLostNotices = false;
  if (const int failure = _watcher.restart(); failure < 0)
    _events.push_back({Event::Kind::Refused, _roots.front(), -failure});
  for (const std::string& root : _roots)
    if (!beginRoot(root)) lose(root);
}

bool WatchedFolders::beginRoot(const std::string& root) {
  const auto identity = identityOf(root);
  if (identity == Identity{}) return false;
  const int found = watch(entryOf(root, "."));  // the folder itself, where the root is a link
  if (found < 0) {
    refuse(root, -found);
    return found != -ENOENT;
  }
  _present[root] = {found, identity};
  _tree.hang(found, kNone, root);
  enterFoldersIn(found);
  return true;
}

void WatchedFolders::lose(const std::string& root) {
  Identity before;
  if (const auto found = _present.find(root); found != _present.end()) {
    before = found->second.identity;
    if (_tree.contains(found->second.watch)) forget(found->second.watch);
    _present.erase(found);
  }
  const auto cover = identityOf(root);
  if (cover != Identity{} && cover.device == before.device && beginRoot(root))
    return _changes.settle(root);  // another folder in its place
  _lost.push_back({root, cover});
  _events.push_back({Event::Kind::Lost, root});
}

void WatchedFolders::checkRoots() {
  std::vector<std::string> changed;
  for (const auto& [root, known] : _present)
    if (identityOf(root) != known.identity) changed.push_back(root);
  for (const std::string& root : changed) lose(root);
}

std::vector<std::string> WatchedFolders::presentRoots() const {
  std::vector<std::string> roots;
  for (const std::string& root : _roots)
    if (std::ranges::find(_lost, root, &Lost::path) == _lost.end()) roots.push_back(root);
  return roots;
}

bool WatchedFolders::isInRoot(const std::string& path) const {
  return std::ranges::any_of(
      presentRoots(), [&](const std::string& root) { return path == root || isBelow(path, root); });
}

void WatchedFolders::retry() {
  retryLimited();
  retryLost();
}

void WatchedFolders::retryLimited() {
  for (const std::string& path : std::exchange(_limited, {})) {
    _changes.settle(path);
    const std::size_t slash = path.rfind('/');
    if (const int parent = watchOf(path.substr(0, slash)); parent != kNone)
      enter(parent, path.substr(slash + 1));
    else if (std::ranges::find(_roots, path) != _roots.end())
      beginRoot(path);
  }
  _hasToldLimit = !_limited.empty();
}

void WatchedFolders::retryLost() {
  for (Lost& lost : std::exchange(_lost, {})) {
    const auto now = identityOf(lost.path);
    if (now == Identity{} || now == lost.cover) {
      _lost.push_back(std::move(lost));
      continue;
    }
    const std::size_t slash = lost.path.rfind('/');
    if (const int parent = watchOf(lost.path.substr(0, slash)); parent != kNone)
      enter(parent, lost.path.substr(slash + 1));
    else
      beginRoot(lost.path);
    _changes.settle(lost.path);
    _events.push_back({Event::Kind::Found, lost.path});
  }
}

std::vector<WatchedFolders::Event> WatchedFolders::takeEvents() {
  return std::exchange(_events, {});
}

/// A folder that was deleted, or whose file system went away. The notices of deleted folders are
/// followed or preceded by those of the folders around them.
void WatchedFolders::end(int watch) {
  const std::string path = _tree.pathOf(watch);
  if (_tree.isRoot(watch) && _present.contains(path)) return lose(path);
  _departures.loseWatch(watch);
  forget(watch);
  const auto cover = identityOf(path);
  if (cover == Identity{}) return _changes.settle(path);
  _lost.push_back({path, cover});
  _events.push_back({Event::Kind::Lost, path});
}

// ---- Entries --------------------------------------------------------------------------------

void WatchedFolders::take(const FolderNotice& notice, Moment now) {
  if (notice.kind == Kind::Lost) _hasLostNotices = true;
  if (!_tree.contains(notice.watch)) return;  // it was let go before this was told
  if (notice.kind == Kind::Ended) return end(notice.watch);
  if (notice.kind == Kind::FolderMoved) return _tree.isRoot(notice.watch) ? checkRoots() : void();
  const std::string around = _tree.pathOf(notice.watch);
  const std::string path = entryOf(around, notice.name);
  if (notice.isFolder)
    takeFolder(path, notice, now);
  else if (isWalked(around))
    takeFile(path, notice, now);
}

void WatchedFolders::takeFile(const std::string& path, const FolderNotice& notice, Moment now) {
  const bool isHidden = isTemporaryName(notice.name);
  switch (notice.kind) {
    case Kind::Made:
    case Kind::Touched:
      if (!isHidden && isWatchedFile(path)) _changes.touch(path, now);
      return;
    case Kind::MovedAway:
      if (!isHidden) depart(path, notice, kNone, now);
      return;
    case Kind::MovedHere: {
      const auto departure = _departures.take(notice.cookie);
      const bool isWanted = !isHidden && isWatchedFile(path);
      if (departure) leave(*departure);  // into the same batch, so that it is found again
      if (isWanted) _changes.settle(path);
      return;
    }
    default:  // whether what is gone was a message, its name alone does not always say
      if (!isHidden && (notice.kind == Kind::Removed || isWatchedFile(path))) _changes.settle(path);
  }
}

void WatchedFolders::takeFolder(const std::string& path, const FolderNotice& notice, Moment now) {
  const int known = _tree.childOf(notice.watch, notice.name);
  switch (notice.kind) {
    case Kind::MovedAway:
      return depart(path, notice, known, now);
    case Kind::MovedHere:
      return arrive(path, notice);
    case Kind::Removed:
      return vanish(path, known);
    default:  // a folder that could not be looked into may be open now
      if (known == kNone || notice.kind == Kind::Made) appear(path, notice);
  }
}

void WatchedFolders::appear(const std::string& path, const FolderNotice& notice) {
  const std::string around = _tree.pathOf(notice.watch);
  if (!isWalked(around)) return;
  enter(notice.watch, notice.name);
  if (!isWalked(path)) return;
  if (!isHere(notice.kind) || !isMaildirName(notice.name)) return _changes.settle(path);
  enterFoldersIn(notice.watch);
  _changes.settle(around);
}

void WatchedFolders::arrive(const std::string& path, const FolderNotice& notice) {
  const auto departure = _departures.take(notice.cookie);
  if (!departure) return appear(path, notice);
  for (std::string& limited : _limited)
    if (limited == departure->path || isBelow(limited, departure->path))
      limited = path + limited.substr(departure->path.size());
  if (departure->watch != kNone) {
    // A folder that took the former name before that was told may have been taken for this one.
    const int there = _watcher.watch(path);
    if (there >= 0 && there != departure->watch)
      forget(departure->watch);
    else
      _tree.hang(departure->watch, notice.watch, notice.name);
  }
  _changes.settle(departure->path);
  _changes.settle(path);
  appear(path, notice);
}

void WatchedFolders::vanish(const std::string& path, int watch) {
  if (watch != kNone) forget(watch);
  std::erase_if(_limited, [&](const std::string& limited) {
    return limited == path || isBelow(limited, path);
  });
  std::erase_if(_lost,
                [&](const Lost& lost) { return lost.path == path || isBelow(lost.path, path); });
  _changes.settle(path);
}

void WatchedFolders::depart(const std::string& path, const FolderNotice& notice, int watch,
                            Moment now) {
  if (watch != kNone) _tree.unhang(watch);
  _departures.add(notice.cookie, {path, notice.isFolder, watch, now + kPairing});
}

/// Without a new path it is as good as deleted.
void WatchedFolders::leave(const Departure& departure) {
  if (departure.isFolder)
    vanish(departure.path, departure.watch);
  else
    _changes.settle(departure.path);
}

void WatchedFolders::expire(Moment now) {
  for (const Departure& departure : _departures.takeExpired(now)) leave(departure);
}

}  // namespace kbx
