#include "platform/volumes/Volumes.h"

#include <string_view>

#include "platform/files/FileNames.h"
#include "platform/files/SymbolicLinks.h"

namespace kbx {
namespace {

/// The path with the links in its folder followed; absent for a loop of links.
std::optional<std::string> physicalPath(const std::string& path) {
  const std::size_t name = path.rfind('/') + 1;
  auto folder = pathByResolvingLinks(std::string_view(path).substr(0, name));
  if (!folder || name == path.size()) return folder;
  if (*folder != "/") folder->append("/");
  return folder->append(path, name);
}

bool holds(std::string_view mountPoint, std::string_view path) {
  if (mountPoint == "/") return true;
  return path.starts_with(mountPoint) &&
         (path.size() == mountPoint.size() || path[mountPoint.size()] == '/');
}

std::optional<Mount> deepestMountAround(std::string_view place) {
  std::optional<Mount> deepest;
  for (Mount& mount : MountTable::current().mounts())
    if (holds(mount.mountPoint, place) &&
        (!deepest || mount.mountPoint.size() >= deepest->mountPoint.size()))
      deepest = std::move(mount);
  return deepest;
}

}  // namespace

std::optional<Mount> mountHolding(const std::string& path) {
  const auto place = physicalPath(path);
  return place ? deepestMountAround(*place) : std::nullopt;
}

bool isMountPoint(const std::string& path) {
  const auto place = physicalPath(path);
  const auto mount = place ? deepestMountAround(*place) : std::nullopt;
  return mount && mount->mountPoint == *place;
}

Ref<NSString> nameOfVolume(const Mount& mount) {
  const std::string label = MountTable::current().labelOf(mount);
  if (!label.empty()) return stringWithFileSystemRepresentation(label);
  if (mount.mountPoint == "/") return nullptr;
  return stringWithFileSystemRepresentation(
      std::string_view(mount.mountPoint).substr(mount.mountPoint.rfind('/') + 1));
}

}  // namespace kbx
