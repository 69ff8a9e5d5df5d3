#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>

#include "platform/files/SystemFiles.h"

namespace kbx {
namespace {

/// What the call answers, or its negative error number; again while a signal interrupts it.
template <class Call>
auto answer(Call call) {
  while (true) {
    auto result = call();
    if (result >= 0) return result;
    if (errno != EINTR) return static_cast<decltype(result)>(-errno);
  }
}

FileStatus::Kind kindOf(mode_t mode) {
  if (S_ISREG(mode)) return FileStatus::Kind::Regular;
  if (S_ISDIR(mode)) return FileStatus::Kind::Directory;
  if (S_ISLNK(mode)) return FileStatus::Kind::SymbolicLink;
  return FileStatus::Kind::Other;
}

void fill(FileStatus* status, const struct stat& found) {
  *status = {kindOf(found.st_mode), static_cast<std::uint64_t>(found.st_size),
             found.st_mode & 07777u, found.st_dev, found.st_ino};
}

int flagsFor(FileSystem::Opening how) {
  constexpr int kAlways = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  switch (how) {
    case FileSystem::Opening::Reading:
      return O_RDONLY | kAlways;
    case FileSystem::Opening::Replacing:
      return O_WRONLY | O_CREAT | O_TRUNC | kAlways;
    case FileSystem::Opening::CreatingNew:
      return O_WRONLY | O_CREAT | O_EXCL | kAlways;
  }
  return O_RDONLY;
}

}  // namespace

int SystemFiles::open(const std::string& path, Opening how) {
  return answer([&] { return ::open(path.c_str(), flagsFor(how), 0666); });
}

std::int64_t SystemFiles::read(int descriptor, void* buffer, std::size_t size) {
  return answer([=] { return ::read(descriptor, buffer, size); });
}

std::int64_t SystemFiles::write(int descriptor, const void* bytes, std::size_t size) {
  return answer([=] { return ::write(descriptor, bytes, size); });
}

int SystemFiles::status(int descriptor, FileStatus* status) {
  struct stat found {};
  const int result = answer([&] { return ::fstat(descriptor, &found); });
  if (result == 0) fill(status, found);
  return result;
}

int SystemFiles::statusOfPath(const std::string& path, FileStatus* status) {
  struct stat found {};
  const int result = answer([&] { return ::stat(path.c_str(), &found); });
  if (result == 0) fill(status, found);
  return result;
}

int SystemFiles::statusOfLink(const std::string& path, FileStatus* status) {
  struct stat found {};
  const int result = answer([&] { return ::lstat(path.c_str(), &found); });
  if (result == 0) fill(status, found);
  return result;
}

int SystemFiles::readLink(const std::string& path, std::string* target) {
  char buffer[PATH_MAX];
  const ssize_t size = answer([&] { return ::readlink(path.c_str(), buffer, sizeof buffer); });
  if (size < 0) return static_cast<int>(size);
  if (static_cast<std::size_t>(size) == sizeof buffer) return -ENAMETOOLONG;  // perhaps cut
  target->assign(buffer, static_cast<std::size_t>(size));
  return 0;
}

int SystemFiles::setMode(int descriptor, unsigned mode) {
  return answer([=] { return ::fchmod(descriptor, static_cast<mode_t>(mode)); });
}

int SystemFiles::flush(int descriptor) {
  return answer([=] { return ::fsync(descriptor); });
}

int SystemFiles::close(int descriptor) {
  // Linux has closed the descriptor even when a signal interrupts the call.
  return ::close(descriptor) == 0 || errno == EINTR ? 0 : -errno;
}

int SystemFiles::rename(const std::string& from, const std::string& to) {
  return answer([&] { return std::rename(from.c_str(), to.c_str()); });
}

int SystemFiles::remove(const std::string& path) {
  return answer([&] { return std::remove(path.c_str()); });
}

}  // namespace kbx
