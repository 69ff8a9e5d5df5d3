#include "host/watch/linux/InotifyLinux.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "host/watch/linux/WaitingLinux.h"

namespace kbx {
namespace {

using Kind = FolderNotice::Kind;

constexpr std::uint32_t kWatched = IN_CREATE | IN_CLOSE_WRITE | IN_MODIFY | IN_ATTRIB |
                                   IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE | IN_MOVE_SELF |
                                   IN_ONLYDIR | IN_DONT_FOLLOW | IN_EXCL_UNLINK;

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

}  // namespace

int Inotify::watch(const std::string& folder) {
  const int watch = ::inotify_add_watch(_descriptor, folder.c_str(), kWatched);
  return watch < 0 ? -errno : watch;
}

void Inotify::unwatch(int watch) { ::inotify_rm_watch(_descriptor, watch); }

int Inotify::restart() {
  close();
  _descriptor = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (_descriptor < 0) _failure = errno;
  return _descriptor < 0 ? -_failure : 0;
}

void Inotify::close() {
  if (_descriptor >= 0) ::close(_descriptor);
  _descriptor = -1;
}

std::vector<FolderNotice> Inotify::wait(std::optional<Moment> until) {
  auto notices = take();
  if (!notices.empty()) return notices;
  pollfd input{_descriptor, POLLIN, 0};
  waitFor({&input, 1}, until);
  return take();
}

/// All that is there, but not for ever while somebody goes on and on.
std::vector<FolderNotice> Inotify::take() {
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

}  // namespace kbx
