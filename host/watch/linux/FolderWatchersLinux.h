// The watchers of folders that Linux has, of which makeFolderWatcher() chooses.
#pragma once

#include "host/watch/FolderWatcher.h"

namespace kbx {

/// What every user has. Absent, with the error number, when the system gives none.
std::unique_ptr<FolderWatcher> makeInotify(int* failure);

/// What only root has (CAP_SYS_ADMIN, Linux 5.17): it watches any number of folders, and its queue
/// does not run over. Folders on a file system that cannot tell in this way are watched with
/// inotify. Absent, with the error number, where the process may not.
std::unique_ptr<FolderWatcher> makeFanotify(int* failure);

}  // namespace kbx
