#include <fcntl.h>
#include <sys/fanotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include "host/watch/linux/FanotifyEventsLinux.h"
#include "host/watch/linux/FolderWatchersLinux.h"
#include "host/watch/linux/InotifyLinux.h"
#include "host/watch/linux/MountTableLinux.h"
#include "host/watch/linux/WaitingLinux.h"

namespace kbx {
namespace {

using Kind = FolderNotice::Kind;
using Role = FanotifyEvent::Place::Role;

constexpr unsigned kGroup = FAN_CLASS_NOTIF | FAN_REPORT_DFID_NAME | FAN_UNLIMITED_QUEUE |
                            FAN_UNLIMITED_MARKS | FAN_CLOEXEC | FAN_NONBLOCK;

constexpr std::uint64_t kWatched = FAN_CREATE | FAN_CLOSE_WRITE | FAN_MODIFY | FAN_ATTRIB |
                                   FAN_DELETE | FAN_DELETE_SELF | FAN_MOVE_SELF | FAN_RENAME |
                                   FAN_ONDIR | FAN_EVENT_ON_CHILD;

struct Meaning {
  std::uint64_t bits;
  Kind kind;
};
/// What happened to one entry comes as one event, in no order. So what is there now is told last: a
/// name that is gone again is no trouble, one that is thought gone would be.
constexpr std::array kMeanings{Meaning{FAN_DELETE, Kind::Removed}, Meaning{FAN_CREATE, Kind::Made},
                               Meaning{FAN_MODIFY | FAN_ATTRIB, Kind::Touched},
                               Meaning{FAN_CLOSE_WRITE, Kind::Written}};

bool isRefusal(int failure) {
  return failure == EOPNOTSUPP || failure == ENODEV || failure == EXDEV || failure == EPERM;
}

class Fanotify final : public FolderWatcher {
 public:
  Fanotify() { _failure = -restart(); }
  ~Fanotify() override { close(); }

  int failure() const { return _failure; }

  int watch(const std::string& folder) override;
  void unwatch(int watch) override;
  int restart() override;
  Moment now() override { return Moment::clock::now(); }
  std::vector<FolderNotice> wait(std::optional<Moment> until) override;

 private:
  /// Numbers below are those of inotify, which counts from one.
  static constexpr int kFirst = 1 << 30;
  /// Likewise for what tells that two notices are one move.
  static constexpr std::uint32_t kFirstCookie = 1U << 31;

  struct Mount {
    std::string device;
    int watch;         // one of the folders on it, while that is watched,
    std::string path;  // and where that was
  };
  struct Watched {
    FolderKey key;
    int mount;
  };

  void close();
  bool mark(int folder) const;
  int numberOf(const OpenedFolder& folder, const std::string& path);
  int numberOf(const FolderKey& key) const;
  void forget(int watch);

  std::vector<FolderNotice> take();
  bool read(std::vector<FolderNotice>& notices);
  void tell(const FanotifyEvent& event, std::vector<FolderNotice>& notices);
  void tellMove(const FanotifyEvent& event, std::vector<FolderNotice>& notices);
  void tellFolder(std::uint64_t mask, int watch, std::vector<FolderNotice>& notices);
  bool isUncertain(const std::vector<FolderNotice>& notices);

  bool isMounted(int number, const Mount& mount) const;
  void endUnmounted(std::vector<FolderNotice>& notices);

  int _group = -1;
  int _failure = 0;
  Inotify _others;  // on file systems that fanotify cannot watch
  MountTable _table;
  bool _hasTableChanged = false;
  std::unordered_map<FolderKey, int> _numbers;
  std::map<int, Watched> _watched;
  std::map<int, Mount> _mounts;
  int _next = kFirst;
  std::uint32_t _cookie = kFirstCookie;
  /// Names of folders in what was read since nothing was left, and whether a renaming was of them.
  std::map<std::pair<int, std::string>, bool> _names;
};

// ---- Watches --------------------------------------------------------------------------------

void Fanotify::close() {
  if (_group >= 0) ::close(_group);
  _group = -1;
}

int Fanotify::restart() {
  close();
  _numbers.clear();
  _watched.clear();
  _mounts.clear();
  _names.clear();
  _group = ::fanotify_init(kGroup, O_RDONLY | O_LARGEFILE);
  if (_group < 0) return -errno;
  // What the system does not know it refuses before it looks for the folder, which is none.
  if (::fanotify_mark(_group, FAN_MARK_ADD, kWatched, -1, ".") < 0 && errno != EBADF) return -errno;
  return _others.restart();
}

bool Fanotify::mark(int folder) const {
  return ::fanotify_mark(_group, FAN_MARK_ADD | FAN_MARK_ONLYDIR, kWatched, folder, ".") == 0;
}

/// The folder is held while it is marked, so that the key is its key whatever moves meanwhile.
int Fanotify::watch(const std::string& folder) {
  const int held = ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (held < 0) return -errno;
  const auto opened = keyOf(held);
  const int failure = opened && mark(held) ? 0 : errno;
  ::close(held);
  if (isRefusal(failure)) return _others.watch(folder);
  return failure == 0 ? numberOf(*opened, folder) : -failure;
}

int Fanotify::numberOf(const OpenedFolder& folder, const std::string& path) {
  const auto [known, isNew] = _numbers.try_emplace(folder.key, _next);
  if (!isNew) return known->second;
  _watched[_next] = {folder.key, folder.mount};
  const auto mount = _mounts.find(folder.mount);
  if (mount == _mounts.end())
    _mounts[folder.mount] = {MountTable::read()[folder.mount], _next, path};
  else if (!_watched.contains(mount->second.watch))
    mount->second = {std::move(mount->second.device), _next, path};
  return _next++;
}

int Fanotify::numberOf(const FolderKey& key) const {
  const auto found = _numbers.find(key);
  return found == _numbers.end() ? -1 : found->second;
}

void Fanotify::forget(int watch) {
  const auto found = _watched.find(watch);
  if (found == _watched.end()) return;
  _numbers.erase(found->second.key);
  _watched.erase(found);
}

/// The mark stays, since without a path there is no way to it; what it tells is passed over.
void Fanotify::unwatch(int watch) {
  if (watch < kFirst) return _others.unwatch(watch);
  forget(watch);
}

// ---- Notices --------------------------------------------------------------------------------

std::vector<FolderNotice> Fanotify::wait(std::optional<Moment> until) {
  auto notices = take();
  if (!notices.empty()) return notices;
  std::array inputs{pollfd{_group, POLLIN, 0}, pollfd{_others.descriptor(), POLLIN, 0},
                    pollfd{_table.descriptor(), POLLPRI, 0}};
  waitFor(inputs, until);
  if (inputs[2].revents != 0) _hasTableChanged = true;
  return take();
}

/// All that is there, but not for ever while somebody goes on and on.
std::vector<FolderNotice> Fanotify::take() {
  constexpr std::size_t kMany = 1 << 15;
  std::vector<FolderNotice> notices;
  bool isLeft = true;
  while (isLeft && notices.size() < kMany) isLeft = read(notices);
  if (isUncertain(notices)) notices.push_back({Kind::Lost});
  if (!isLeft) _names.clear();
  if (_table.hasChanged() || std::exchange(_hasTableChanged, false)) endUnmounted(notices);
  auto others = _others.take();
  std::move(others.begin(), others.end(), std::back_inserter(notices));
  return notices;
}

bool Fanotify::read(std::vector<FolderNotice>& notices) {
  alignas(fanotify_event_metadata) char buffer[1 << 16];
  const ssize_t size = ::read(_group, buffer, sizeof buffer);
  if (size <= 0) return false;
  for (const FanotifyEvent& event : fanotifyEventsIn({buffer, static_cast<std::size_t>(size)}))
    tell(event, notices);
  return true;
}

void Fanotify::tell(const FanotifyEvent& event, std::vector<FolderNotice>& notices) {
  if (event.mask & FAN_Q_OVERFLOW) return void(notices.push_back({Kind::Lost}));
  if (event.mask & FAN_RENAME) return tellMove(event, notices);
  for (const auto& place : event.places) {
    const int watch = numberOf(place.folder);
    if (watch < 0) continue;  // it was let go
    if (place.name.empty()) {
      tellFolder(event.mask, watch, notices);
      continue;
    }
    for (const auto& [bits, kind] : kMeanings)
      if (event.mask & bits)
        notices.push_back({kind, watch, place.name, (event.mask & FAN_ONDIR) != 0});
  }
}

void Fanotify::tellFolder(std::uint64_t mask, int watch, std::vector<FolderNotice>& notices) {
  if (mask & FAN_MOVE_SELF) notices.push_back({Kind::FolderMoved, watch});
  if (!(mask & FAN_DELETE_SELF)) return;
  forget(watch);
  notices.push_back({Kind::Ended, watch});
}

/// A folder that is not watched has no place in the event.
void Fanotify::tellMove(const FanotifyEvent& event, std::vector<FolderNotice>& notices) {
  const std::uint32_t cookie = _cookie++ | kFirstCookie;
  for (const auto& [role, folder, name] : event.places) {
    const int watch = numberOf(folder);
    const Kind kind = role == Role::Before ? Kind::MovedAway : Kind::MovedHere;
    if (watch >= 0) notices.push_back({kind, watch, name, (event.mask & FAN_ONDIR) != 0, cookie});
  }
}

/// Whether notices may stand for more than they tell. The system drops an event that is the same as
/// one that was not read yet, so of a folder that got a name, lost it and got it again, the last is
/// missing. For files that is all one, but where a folder is must be known.
bool Fanotify::isUncertain(const std::vector<FolderNotice>& notices) {
  bool isUncertain = false;
  for (const FolderNotice& notice : notices) {
    if (!notice.isFolder || notice.name.empty() || notice.kind == Kind::Touched) continue;
    const bool isRenaming = notice.kind == Kind::MovedAway || notice.kind == Kind::MovedHere;
    const auto [known, isNew] = _names.try_emplace({notice.watch, notice.name}, isRenaming);
    if (!isNew && (known->second || isRenaming)) isUncertain = true;
    known->second |= isRenaming;
  }
  return isUncertain;
}

// ---- Unmounting -----------------------------------------------------------------------------

/// Whether the marks of a mount whose number is in the table still hold: the number, and that of
/// the device, may have been given anew. Taking away what was not wished for fails where there is
/// no mark at all.
bool Fanotify::isMounted(int number, const Mount& mount) const {
  const auto known = _watched.find(mount.watch);
  if (known == _watched.end()) return true;
  const int held = ::open(mount.path.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (held < 0) return true;
  const auto opened = keyOf(held);
  bool isMounted = true;
  if (opened && opened->mount == number && !isOnOneFileSystem(opened->key, known->second.key))
    isMounted = false;
  else if (opened && opened->key == known->second.key)
    isMounted =
        ::fanotify_mark(_group, FAN_MARK_REMOVE, FAN_OPEN, held, ".") == 0 || errno != ENOENT;
  ::close(held);
  return isMounted;
}

/// The system tells nothing of a file system that goes away. Outer folders end before those in
/// them, since they were watched before.
void Fanotify::endUnmounted(std::vector<FolderNotice>& notices) {
  const auto table = MountTable::read();
  if (table.empty()) return;
  std::set<int> gone;
  for (const auto& [number, mount] : _mounts) {
    const auto found = table.find(number);
    const bool isThere =
        found != table.end() && found->second == mount.device && isMounted(number, mount);
    if (!isThere) gone.insert(number);
  }
  if (gone.empty()) return;
  std::vector<int> ended;
  for (const auto& [watch, known] : _watched)
    if (gone.contains(known.mount)) ended.push_back(watch);
  for (const int watch : ended) {
    forget(watch);
    notices.push_back({Kind::Ended, watch});
  }
  for (const int number : gone) _mounts.erase(number);
}

}  // namespace

std::unique_ptr<FolderWatcher> makeFanotify(int* failure) {
  auto watcher = std::make_unique<Fanotify>();
  *failure = watcher->failure();
  if (*failure != 0) return nullptr;
  return watcher;
}

}  // namespace kbx
