#include "host/import/ImporterCatalog.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "platform/desktop/DesktopFolders.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDictionary.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "platform/system/SystemRoot.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kExtension = ".mdimporter";

Ref<NSObject> infoOf(const std::string& bundle) {
  auto file = NSURL::fileURLWithFileSystemRepresentation(bundle + "/Contents/Info.plist", false);
  Ref<NSData> bytes = NSData::dataWithContentsOfURL(file, NSDataReadingNone, nullptr);
  if (!bytes) return nullptr;
  return NSPropertyListSerialization::propertyListWithData(bytes, NSPropertyListImmutable, nullptr,
                                                           nullptr);
}

/// The elements of an array among the entries of a dictionary; none where either is something else.
std::vector<Ref<NSObject>> elements(NSObject* dictionary, NSString* key) {
  auto* entries = cast<NSDictionary>(dictionary);
  auto* array = entries ? cast<NSArray>(entries->objectForKey(key)) : nullptr;
  std::vector<Ref<NSObject>> found;
  if (array) found.assign(array->begin(), array->end());
  return found;
}

std::vector<std::string> typesOf(NSObject* info) {
  std::vector<std::string> types;
  for (const auto& document : elements(info, "CFBundleDocumentTypes"_ns))
    for (const auto& type : elements(document, "LSItemContentTypes"_ns))
      if (auto* text = cast<NSString>(type)) types.push_back(text->lossyUTF8());
  return types;
}

void addImportersIn(const std::string& folder, std::vector<InstalledImporter>& importers) {
  std::vector<std::string> paths;
  std::error_code failure;
  for (fs::directory_iterator at(folder, failure), end; !failure && at != end;
       at.increment(failure))
    if (at->path().extension() == kExtension) paths.push_back(at->path().string());
  std::ranges::sort(paths);
  for (std::string& path : paths) {
    auto types = typesOf(infoOf(path));
    importers.push_back({std::move(path), std::move(types)});
  }
}

}  // namespace

bool InstalledImporter::takes(std::string_view type) const {
  return std::ranges::find(types, type) != types.end();
}

std::vector<std::string> importerFolders() {
  std::vector<std::string> folders;
  if (auto data = userDataFolder()) folders.push_back(*data + "/ferncase/Library/Spotlight");
  folders.push_back(pathBelowSystemRoot("/Library/Spotlight"));
  folders.push_back(pathBelowSystemRoot("/System/Library/Spotlight"));
  return folders;
}

std::vector<InstalledImporter> installedImporters() {
  std::vector<InstalledImporter> importers;
  for (const std::string& folder : importerFolders()) addImportersIn(folder, importers);
  return importers;
}

}  // namespace kbx
