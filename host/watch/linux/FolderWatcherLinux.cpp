#include "host/watch/FolderWatcher.h"

#include <fstream>

#include "host/watch/linux/FolderWatchersLinux.h"
#include "host/watch/linux/InotifyLinux.h"

namespace kbx {

std::unique_ptr<FolderWatcher> makeInotify(int* failure) {
  auto watcher = std::make_unique<Inotify>();
  *failure = watcher->failure();
  if (*failure != 0) return nullptr;
  return watcher;
}

std::unique_ptr<FolderWatcher> makeFolderWatcher(int* failure) {
  auto watcher = makeFanotify(failure);
  return watcher ? std::move(watcher) : makeInotify(failure);
}

std::string folderWatchLimit() {
  std::ifstream file("/proc/sys/fs/inotify/max_user_watches");
  std::string limit;
  std::getline(file, limit);
  return limit;
}

}  // namespace kbx
