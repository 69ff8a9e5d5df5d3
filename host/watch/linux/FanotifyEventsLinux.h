// The events of a fanotify group, and how it names folders.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kbx {

/// A folder as fanotify names it, whatever its path: the number of its file system and its handle
/// there.
using FolderKey = std::string;

struct OpenedFolder {
  FolderKey key;
  int mount = -1;  // its number in the mount table
};

/// The key of the folder that a descriptor is open for. Absent, with errno, where the file system
/// has no handles.
std::optional<OpenedFolder> keyOf(int descriptor);

bool isOnOneFileSystem(const FolderKey& one, const FolderKey& other);

struct FanotifyEvent {
  /// Where it happened.
  struct Place {
    enum class Role : std::uint8_t { Entry, Before, After } role;  // the latter two of a renaming
    FolderKey folder;
    std::string name;  // empty for the folder itself
  };
  std::uint64_t mask = 0;  // several things may have happened
  std::vector<Place> places = {};
};

/// The events in what was read from a group. What they hold that is not known is passed over.
std::vector<FanotifyEvent> fanotifyEventsIn(std::span<const char> bytes);

}  // namespace kbx
