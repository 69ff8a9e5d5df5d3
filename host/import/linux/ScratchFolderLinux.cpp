#include "host/import/ScratchFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

#include "platform/desktop/DesktopFolders.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kStart = "ferncase-scratch-";
constexpr std::string_view kPattern = "XXXXXX";
constexpr int kMostAttempts = 16;

/// The absolute path that a variable holds; empty otherwise.
std::string folderIn(std::string_view variable) {
  auto path = environmentVariable(variable);
  return path && path->starts_with('/') ? *path : "";
}

std::vector<std::string> parentsFor(ScratchFolder::Place place) {
  std::vector<std::string> parents;
  if (place == ScratchFolder::Place::Memory) parents = {folderIn("XDG_RUNTIME_DIR"), "/dev/shm"};
  parents.insert(parents.end(), {folderIn("TMPDIR"), "/tmp"});
  std::erase(parents, "");
  return parents;
}

/// The folder, locked for as long as the descriptor is open; negative when it is not there, not
/// ours, or somebody else's lock is on it.
int openAndLock(const std::string& path) {
  const int folder = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  struct stat status;
  const bool isOurs = folder >= 0 && ::fstat(folder, &status) == 0 && status.st_uid == ::geteuid();
  if (isOurs && ::flock(folder, LOCK_EX | LOCK_NB) == 0) return folder;
  if (folder >= 0) ::close(folder);
  return -1;
}

/// Whether a folder that was locked is still there: another process may have taken it for a
/// left-over between its making and its locking.
bool isStillThere(int folder) {
  struct stat status;
  return ::fstat(folder, &status) == 0 && status.st_nlink > 0;
}

bool isScratchName(std::string_view name) {
  return name.starts_with(kStart) && name.size() == kStart.size() + kPattern.size();
}

void removeLeftOvers(const std::string& parent) {
  std::error_code failure;
  for (fs::directory_iterator at(parent, failure), end; !failure && at != end;
       at.increment(failure)) {
    if (!isScratchName(at->path().filename().string())) continue;
    const int folder = openAndLock(at->path().string());
    if (folder < 0) continue;  // its process lives
    std::error_code ignored;
    fs::remove_all(at->path(), ignored);
    ::close(folder);
  }
}

}  // namespace

ScratchFolder::ScratchFolder(Place place) {
  for (const std::string& parent : parentsFor(place)) {
    if (!makeIn(parent)) continue;
    _failure = 0;
    removeLeftOvers(parent);
    return;
  }
}

bool ScratchFolder::makeIn(const std::string& parent) {
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    std::string path = parent + "/" + std::string(kStart) + std::string(kPattern);
    if (!::mkdtemp(path.data())) {
      _failure = errno;
      return false;
    }
    _lock = openAndLock(path);
    if (_lock >= 0 && isStillThere(_lock)) {
      _path = std::move(path);
      return true;
    }
    if (_lock >= 0) ::close(_lock);
    ::rmdir(path.c_str());
  }
  _failure = ENOLCK;
  return false;
}

ScratchFolder::~ScratchFolder() {
  if (_lock < 0) return;
  std::error_code ignored;
  fs::remove_all(_path, ignored);
  ::close(_lock);
}

void ScratchFolder::clear() {
  std::error_code failure, ignored;
  for (fs::directory_iterator at(_path, failure), end; !failure && at != end; at.increment(failure))
    fs::remove_all(at->path(), ignored);
}

}  // namespace kbx
