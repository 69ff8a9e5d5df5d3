#include "platform/resources/LocalizedNames.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "platform/desktop/DesktopEntry.h"
#include "platform/desktop/DesktopFolders.h"
#include "platform/desktop/UserFolders.h"
#include "platform/files/BoundedFile.h"
#include "platform/files/FileNames.h"
#include "platform/volumes/Volumes.h"

namespace kbx {
namespace {

constexpr std::size_t kLargestEntry = std::size_t{256} << 10;

bool isInFolderOfApplications(std::string_view path) {
  return std::ranges::any_of(dataFolders(), [path](const std::string& folder) {
    return path.starts_with(folder) && path.substr(folder.size()).starts_with("/applications/");
  });
}

std::optional<std::string> nameOfApplication(const std::string& path) {
  if (!path.ends_with(".desktop") || !isInFolderOfApplications(path)) return std::nullopt;
  const auto text = contentsOfFile(path, kLargestEntry);
  return text ? nameInDesktopEntry(*text, userLanguages()) : std::nullopt;
}

/// Absent when somebody's file has no name that is UTF-8 and can be shown.
Ref<NSString> shown(const std::optional<std::string>& name) {
  return name && !name->empty() ? NSString::stringWithUTF8(*name) : nullptr;
}

Ref<NSString> nameOfRoot() {
  const auto mount = mountHolding("/");
  return mount ? nameOfVolume(*mount) : nullptr;
}

}  // namespace

Ref<NSString> localizedName(const std::string& path) {
  Ref<NSString> name;
  if (path == "/") name = nameOfRoot();
  if (!name) name = shown(nameOfApplication(path));
  if (!name) name = shown(localizedNameOfUserFolder(path));
  if (name) return name;
  const std::size_t start = path.size() > 1 ? path.rfind('/') + 1 : 0;
  return stringWithFileSystemRepresentation(std::string_view(path).substr(start));
}

}  // namespace kbx
