#include "platform/resources/ResourceValues.h"

#include "platform/files/FileErrors.h"
#include "platform/files/FileNames.h"
#include "platform/files/FileSystem.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSNumber.h"
#include "platform/resources/BundleLayout.h"
#include "platform/resources/LocalizedNames.h"
#include "platform/resources/TypeIdentifiers.h"
#include "platform/volumes/Volumes.h"

namespace kbx {
namespace {

struct Item {
  const std::string& path;
  bool isFolder;
  bool isLink;
};

Ref<NSObject> boolean(bool value) { return NSNumber::numberWithBool(value); }

Ref<NSObject> readLocalizedName(const Item& item) { return localizedName(item.path); }

Ref<NSObject> readIsPackage(const Item& item) {
  return boolean(item.isFolder && isPackage(item.path));
}

Ref<NSObject> readIsApplication(const Item& item) {
  return boolean(item.isFolder && isApplication(item.path));
}

Ref<NSObject> readIsVolume(const Item& item) {
  return boolean(item.isFolder && isMountPoint(item.path));
}

Ref<NSObject> readVolumeIdentifier(const Item& item) {
  const auto mount = mountHolding(item.path);
  return mount ? stringWithFileSystemRepresentation(mount->device) : nullptr;
}

Ref<NSObject> readVolumeName(const Item& item) {
  const auto mount = mountHolding(item.path);
  return mount ? nameOfVolume(*mount) : nullptr;
}

Ref<NSObject> typeOfFolder(const std::string& path) {
  if (isMountPoint(path)) return "public.volume"_ns;
  if (isApplication(path)) return "com.apple.application-bundle"_ns;
  return isPackage(path) ? "com.apple.package"_ns : "public.folder"_ns;
}

Ref<NSObject> readType(const Item& item) {
  FileStatus target;
  if (item.isLink && FileSystem::current().statusOfPath(item.path, &target) < 0)
    return "public.symlink"_ns;
  if (item.isFolder || target.isFolder()) return typeOfFolder(item.path);
  return typeIdentifier(std::string_view(item.path).substr(item.path.rfind('/') + 1), false);
}

struct Resource {
  NSString* (*key)();
  Ref<NSObject> (*read)(const Item& item);
};
constexpr Resource kResources[] = {
    {NSURLIsApplicationKey, readIsApplication},
    {NSURLIsPackageKey, readIsPackage},
    {NSURLIsVolumeKey, readIsVolume},
    {NSURLLocalizedNameKey, readLocalizedName},
    {NSURLTypeIdentifierKey, readType},
    {NSURLVolumeIdentifierKey, readVolumeIdentifier},
    {NSURLVolumeLocalizedNameKey, readVolumeName},
};

}  // namespace

Ref<NSObject> readResourceValue(NSURL* url, NSString* key, Ref<NSError>* error) {
  const std::string& path = url->fileSystemRepresentation();
  FileStatus status;
  const int result = FileSystem::current().statusOfLink(path, &status);
  if (result < 0) {
    if (error) *error = fileError(url, FileAction::Reading, -result);
    return nullptr;
  }
  const Item item{path, status.isFolder(), status.kind == FileStatus::Kind::SymbolicLink};
  for (const Resource& resource : kResources)
    if (isEqual(key, resource.key())) return resource.read(item);
  return nullptr;
}

}  // namespace kbx
