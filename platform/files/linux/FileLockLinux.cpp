#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

#include "platform/files/FileLock.h"

namespace kbx {
namespace {

constexpr std::chrono::milliseconds kPause{5};

/// Zero or the negative error number.
int lockWithin(int descriptor, std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) return errno == EBADF ? -EBADF : 0;  // no locks on this file system
    if (std::chrono::steady_clock::now() >= deadline) return -EWOULDBLOCK;
    std::this_thread::sleep_for(kPause);
  }
  return 0;
}

}  // namespace

FileLock::FileLock(const std::string& path, std::chrono::milliseconds patience)
    : _descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {
  _result = _descriptor < 0 ? -errno : lockWithin(_descriptor, patience);
}

FileLock::~FileLock() {
  if (_descriptor >= 0) ::close(_descriptor);
}

}  // namespace kbx
