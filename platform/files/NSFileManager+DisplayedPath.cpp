// NSFileManager: the names that a path is shown by.
#include <algorithm>
#include <string>
#include <string_view>

#include "platform/files/FileNames.h"
#include "platform/files/FileSystem.h"
#include "platform/files/NSFileManager.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSArray.h"
#include "platform/resources/LocalizedNames.h"
#include "platform/volumes/Volumes.h"

namespace kbx {
namespace {

constexpr std::string_view kPlacesOfVolumes[] = {"/media/", "/run/media/", "/mnt/", "/Volumes/"};

bool standsForItself(std::string_view mountPoint) {
  return std::ranges::any_of(kPlacesOfVolumes,
                             [mountPoint](auto place) { return mountPoint.starts_with(place); });
}

bool isBelow(std::string_view mountPoint, std::string_view path) {
  return path.starts_with(mountPoint) &&
         (path.size() == mountPoint.size() || path[mountPoint.size()] == '/');
}

/// Appends the names of what lies below the first `start` bytes of the path.
void appendNames(NSArray::Elements& names, const std::string& path, std::size_t start) {
  for (std::size_t at = start + 1; at < path.size();) {
    const std::size_t end = std::min(path.find('/', at), path.size());
    if (end > at) names.push_back(localizedName(path.substr(0, end)));
    at = end + 1;
  }
}

}  // namespace

Ref<NSArray> NSFileManager::componentsToDisplayForPath(NSString* path) const {
  const auto bytes = fileSystemRepresentation(path);
  if (!bytes || !bytes->starts_with('/')) return nullptr;
  const Ref<NSURL> url = NSURL::fileURLWithFileSystemRepresentation(*bytes, false);
  const std::string place = url->URLByStandardizingPath()->fileSystemRepresentation();
  FileStatus status;
  if (FileSystem::current().statusOfLink(place, &status) < 0) return nullptr;
  NSArray::Elements names;
  const auto mount = mountHolding(place);
  if (mount && standsForItself(mount->mountPoint) && isBelow(mount->mountPoint, place)) {
    names.push_back(nameOfVolume(*mount));
    appendNames(names, place, mount->mountPoint.size());
  } else {
    names.push_back(localizedName("/"));
    appendNames(names, place, 0);
  }
  return NSArray::arrayWithElements(std::move(names));
}

}  // namespace kbx
