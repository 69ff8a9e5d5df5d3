#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <mutex>
#include <set>
#include <system_error>
#include <utility>

#include "host/store/StoreErrors.h"
#include "host/store/WriterLock.h"

namespace kbx {
namespace {

using Identity = std::pair<dev_t, ino_t>;

/// The files that this process has locked: record locks keep no second holder of the same process
/// out, and closing any descriptor of the file would give the lock up.
struct HeldFiles {
  std::mutex mutex;
  std::set<Identity> files;
};

HeldFiles& heldFiles() {
  static HeldFiles* const held = new HeldFiles;
  return *held;
}

class LinuxWriterLock final : public WriterLock {
 public:
  LinuxWriterLock(int descriptor, Identity identity)
      : _descriptor(descriptor), _identity(identity) {}
  ~LinuxWriterLock() override {
    HeldFiles& held = heldFiles();
    std::lock_guard guard(held.mutex);
    ::close(_descriptor);
    held.files.erase(_identity);
  }

 private:
  const int _descriptor;
  const Identity _identity;
};

struct flock wholeFile() {
  struct flock range = {};
  range.l_type = F_WRLCK;
  range.l_whence = SEEK_SET;
  return range;
}

Ref<NSError> failure(const std::string& path, int number) {
  return storeError(
      StoreUnreadableError, path,
      "the lock of the store cannot be taken (" + std::generic_category().message(number) + ")");
}

Ref<NSError> busy(const std::string& storePath, pid_t process) {
  return storeError(StoreBusyError, storePath,
                    process == ::getpid() ? std::string("this process writes to the store already")
                                          : "process " + std::to_string(process) +
                                                " is writing to the store; wait for it or end it");
}

/// Beside the file itself, by whatever name it was called.
std::string lockPathOf(const std::string& storePath) {
  std::error_code failure;
  const auto real = std::filesystem::weakly_canonical(storePath, failure);
  return (failure ? storePath : real.string()) + "-lock";
}

/// Zero when the lock was taken, -1 when it cannot be, else the process that holds it.
pid_t lockOf(int descriptor) {
  while (true) {
    struct flock range = wholeFile();
    if (::fcntl(descriptor, F_SETLK, &range) == 0) return 0;
    if (errno != EACCES && errno != EAGAIN && errno != EINTR) return -1;
    range = wholeFile();
    if (::fcntl(descriptor, F_GETLK, &range) != 0) return -1;
    if (range.l_type != F_UNLCK) return range.l_pid;  // else it was just given up
  }
}

}  // namespace

std::unique_ptr<WriterLock> WriterLock::take(const std::string& storePath, Ref<NSError>* error) {
  HeldFiles& held = heldFiles();
  std::lock_guard guard(held.mutex);
  const std::string path = lockPathOf(storePath);
  struct stat state;
  if (::stat(path.c_str(), &state) == 0 && held.files.contains({state.st_dev, state.st_ino})) {
    tell(error, busy(storePath, ::getpid()));
    return nullptr;
  }
  const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (descriptor < 0 || ::fstat(descriptor, &state) != 0) {
    tell(error, failure(path, errno));
    if (descriptor >= 0) ::close(descriptor);
    return nullptr;
  }
  const pid_t holder = lockOf(descriptor);
  if (holder != 0) {
    tell(error, holder < 0 ? failure(path, errno) : busy(storePath, holder));
    ::close(descriptor);
    return nullptr;
  }
  const Identity identity{state.st_dev, state.st_ino};
  held.files.insert(identity);
  return std::make_unique<LinuxWriterLock>(descriptor, identity);
}

}  // namespace kbx
