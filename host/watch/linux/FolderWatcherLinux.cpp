#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fstream>
#include <string_view>

#include "host/console/Interruption.h"
#include "host/watch/FolderWatcher.h"

namespace kbx {
namespace {

using Kind = FolderNotice::Kind;

constexpr std::uint32_t kWatched = IN_CREATE | IN_CLOSE_WRITE | IN_MODIFY | IN_ATTRIB |
                                   IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE | IN_MOVE_SELF |
                                   IN_ONLYDIR | IN_DONT_FOLLOW | IN_EXCL_UNLINK;

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

struct Meaning {
  std::uint32_t bit;
  Kind kind;
};
constexpr std::array kMeanings{
    Meaning{IN_Q_OVERFLOW, Kind::Lost},       Meaning{IN_IGNORED, Kind::Ended},
    Meaning{IN_MOVE_SELF, Kind::FolderMoved}, Meaning{IN_CREATE, Kind::Made},
    Meaning{IN_CLOSE_WRITE, Kind::Written},   Meaning{IN_MOVED_FROM, Kind::MovedAway},
    Meaning{IN_MOVED_TO, Kind::MovedHere},    Meaning{IN_DELETE, Kind::Removed},
    Meaning{IN_MODIFY, Kind::Touched},        Meaning{IN_ATTRIB, Kind::Touched}};

/// The notice of an event. Absent for what another event tells, too: a change of the folder's own
/// attributes, or that its file system is about to go.
std::optional<FolderNotice> noticeOf(const inotify_event& event, const char* name) {
  for (const auto& [bit, kind] : kMeanings) {
    if (!(event.mask & bit)) continue;
    if (kind != Kind::Lost && kind != Kind::Ended && kind != Kind::FolderMoved && event.len == 0)
      return std::nullopt;
    return FolderNotice{kind, event.wd, event.len > 0 ? name : "", (event.mask & IN_ISDIR) != 0,
                        event.cookie};
  }
  return std::nullopt;
}

std::optional<timespec> timeUntil(std::optional<Moment> until) {
  if (!until) return std::nullopt;
  using std::chrono::nanoseconds;
  const Moment now = Moment::clock::now();
  const auto left = *until > now ? nanoseconds(*until - now) : nanoseconds(0);
  return timespec{static_cast<std::time_t>(left.count() / kNanosecondsPerSecond),
                  static_cast<long>(left.count() % kNanosecondsPerSecond)};
}

/// Waits until there is something to read. A wish to end that comes before the waiting ends it
/// just as one that comes later: the signals are let in by the system call itself.
void waitFor(int descriptor, std::optional<Moment> until) {
  sigset_t ending, before;
  sigemptyset(&ending);
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&ending, signal);
  ::pthread_sigmask(SIG_BLOCK, &ending, &before);
  if (!Interruption::isWished()) {
    pollfd input{descriptor, POLLIN, 0};
    const auto time = timeUntil(until);
    ::ppoll(&input, 1, time ? &*time : nullptr, &before);
  }
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

class Inotify final : public FolderWatcher {
 public:
  Inotify() { restart(); }
  ~Inotify() override { close(); }

  int failure() const { return _descriptor < 0 ? _failure : 0; }

  int watch(const std::string& folder) override {
    const int watch = ::inotify_add_watch(_descriptor, folder.c_str(), kWatched);
    return watch < 0 ? -errno : watch;
  }
  void unwatch(int watch) override { ::inotify_rm_watch(_descriptor, watch); }
  int restart() override {
    close();
    _descriptor = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (_descriptor < 0) _failure = errno;
    return _descriptor < 0 ? -_failure : 0;
  }
  Moment now() override { return Moment::clock::now(); }
  std::vector<FolderNotice> wait(std::optional<Moment> until) override {
    auto notices = readAll();
    if (!notices.empty()) return notices;
    waitFor(_descriptor, until);
    return readAll();
  }

 private:
  void close() {
    if (_descriptor >= 0) ::close(_descriptor);
    _descriptor = -1;
  }
  std::vector<FolderNotice> readAll();
  bool read(std::vector<FolderNotice>& notices);

  int _descriptor = -1;
  int _failure = 0;
};

/// All that is there, but not for ever while somebody goes on and on.
std::vector<FolderNotice> Inotify::readAll() {
  constexpr std::size_t kMany = 1 << 15;  // the system itself keeps fewer
  std::vector<FolderNotice> notices;
  while (notices.size() < kMany && read(notices)) continue;
  return notices;
}

bool Inotify::read(std::vector<FolderNotice>& notices) {
  alignas(inotify_event) char buffer[1 << 16];
  const ssize_t size = ::read(_descriptor, buffer, sizeof buffer);
  for (ssize_t at = 0; at < size;) {
    inotify_event event;
    std::memcpy(&event, buffer + at, sizeof event);
    if (auto notice = noticeOf(event, buffer + at + sizeof event))
      notices.push_back(std::move(*notice));
    at += static_cast<ssize_t>(sizeof event + event.len);
  }
  return size > 0;
}

}  // namespace

std::unique_ptr<FolderWatcher> makeFolderWatcher(int* failure) {
  auto watcher = std::make_unique<Inotify>();
  *failure = watcher->failure();
  if (*failure != 0) return nullptr;
  return watcher;
}

std::string folderWatchLimit() {
  std::ifstream file("/proc/sys/fs/inotify/max_user_watches");
  std::string limit;
  std::getline(file, limit);
  return limit;
}

}  // namespace kbx
