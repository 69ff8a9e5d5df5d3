// How a watcher of folders waits for the system's descriptors.
#pragma once

#include <poll.h>

#include <optional>
#include <span>

#include "host/watch/FolderWatcher.h"

namespace kbx {

/// Waits until one of the descriptors has something to tell (which its revents say then), the
/// moment has come, or the process is wished to end. A wish that comes before the waiting ends it
/// just as one that comes later.
void waitFor(std::span<pollfd> descriptors, std::optional<Moment> until);

}  // namespace kbx
