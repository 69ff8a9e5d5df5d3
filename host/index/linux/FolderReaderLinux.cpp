#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

#include "host/index/FolderReader.h"

namespace kbx {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

std::int64_t nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * kNanosecondsPerSecond + time.tv_nsec;
}

/// The device is that of the folder: layered file systems give files other ones, which change.
FileState stateOf(const struct stat& status, std::uint64_t device) {
  return {device, status.st_ino, static_cast<std::uint64_t>(status.st_size),
          nanoseconds(status.st_mtim), nanoseconds(status.st_ctim)};
}

bool isDots(std::string_view name) { return name == "." || name == ".."; }

/// One reading of one folder.
class Reading {
 public:
  Reading(const std::function<bool(std::string_view)>& wantsFile, std::vector<FolderEntry>* entries)
      : _wantsFile(wantsFile), _entries(*entries) {}

  int read(const std::string& path) {
    const int descriptor =
        ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return errno;
    _folder.reset(::fdopendir(descriptor));
    if (!_folder) {
      const int failure = errno;
      ::close(descriptor);
      return failure;
    }
    const int failure = list();
    return failure ? failure : lookAtFiles();
  }

 private:
  /// Names first: looking at the files in the order of their inodes spares the disk many ways.
  int list() {
    errno = 0;
    for (; const dirent* entry = ::readdir(_folder.get()); errno = 0) {
      const std::string_view name = entry->d_name;
      const bool mayBeFile = entry->d_type == DT_REG || entry->d_type == DT_UNKNOWN;
      const bool mayBeFolder = entry->d_type == DT_DIR || entry->d_type == DT_UNKNOWN;
      if (isDots(name) || !(mayBeFolder || (mayBeFile && _wantsFile(name)))) continue;
      _entries.push_back({std::string(name), entry->d_type == DT_DIR, {}});
      _entries.back().state.inode = entry->d_ino;
    }
    return errno;
  }

  int lookAtFiles() {
    const int descriptor = ::dirfd(_folder.get());
    struct stat status;
    if (::fstat(descriptor, &status) != 0) return errno;
    _device = status.st_dev;
    std::ranges::sort(_entries, {}, [](const FolderEntry& entry) { return entry.state.inode; });
    for (FolderEntry& entry : _entries)
      if (int failure = lookAt(descriptor, entry)) return failure;
    std::erase_if(_entries, [](const FolderEntry& entry) { return entry.name.empty(); });
    return 0;
  }

  /// Takes the name away from what is not wanted after all.
  int lookAt(int descriptor, FolderEntry& entry) {
    if (entry.isFolder) return 0;
    struct stat status;
    if (::fstatat(descriptor, entry.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
      entry.name.clear();
      return errno == ENOENT ? 0 : errno;
    }
    entry.isFolder = S_ISDIR(status.st_mode);
    if (S_ISREG(status.st_mode) && _wantsFile(entry.name))
      entry.state = stateOf(status, _device);
    else if (!entry.isFolder)
      entry.name.clear();
    return 0;
  }

  const std::function<bool(std::string_view)>& _wantsFile;
  std::vector<FolderEntry>& _entries;
  OpenFolder _folder;
  std::uint64_t _device = 0;
};

class SystemFolderReader final : public FolderReader {
 public:
  int read(const std::string& folder, const std::function<bool(std::string_view)>& wantsFile,
           std::vector<FolderEntry>* entries) override {
    entries->clear();
    return Reading(wantsFile, entries).read(folder);
  }

  int stateOfFile(const std::string& path, FolderEntry* entry) override {
    struct stat status;
    if (::stat(path.c_str(), &status) != 0) return errno;
    entry->isFolder = S_ISDIR(status.st_mode);
    if (entry->isFolder) return 0;
    if (!S_ISREG(status.st_mode)) return ENOTSUP;
    std::uint64_t device = status.st_dev;
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    const int failure = deviceOfFolder(folder.empty() ? "." : folder, &device);
    entry->state = stateOf(status, device);
    return failure;
  }

  int deviceOfFolder(const std::string& folder, std::uint64_t* device) override {
    struct stat status;
    if (::stat(folder.c_str(), &status) != 0) return errno;
    if (!S_ISDIR(status.st_mode)) return ENOTDIR;
    *device = status.st_dev;
    return 0;
  }
};

}  // namespace

KBX_SERVICE(FolderReader, SystemFolderReader)

}  // namespace kbx
