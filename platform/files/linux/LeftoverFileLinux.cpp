#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>

#include "platform/files/LeftoverFile.h"

namespace kbx {
namespace {

constexpr std::time_t kPatience = 3600;  // seconds; no write of ours takes as long

bool isLeftover(const struct stat& file) {
  return S_ISREG(file.st_mode) && file.st_uid == ::geteuid() && file.st_nlink == 1 &&
         std::time(nullptr) - file.st_mtime > kPatience;
}

bool removeOpen(int descriptor, const std::string& path) {
  struct stat file {};
  if (::fstat(descriptor, &file) != 0 || !isLeftover(file)) return false;
  // Of all that found this file one has its lock. Who gets the lock later finds another file, or
  // none, at the path.
  if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) return false;
  struct stat found {};
  if (::lstat(path.c_str(), &found) != 0) return false;
  return found.st_dev == file.st_dev && found.st_ino == file.st_ino && ::unlink(path.c_str()) == 0;
}

}  // namespace

bool removeLeftover(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (descriptor < 0) return false;
  const bool isRemoved = removeOpen(descriptor, path);
  ::close(descriptor);
  return isRemoved;
}

}  // namespace kbx
