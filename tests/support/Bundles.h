// Bundles: the bundles that the build makes for tests, and bundles that a test writes itself.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "platform/files/NSURL.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {

/// The location of a bundle of tests/bundles.
inline Ref<NSURL> testBundle(std::string_view name) {
  const std::string path = FERNCASE_BUNDLES_DIR "/" + std::string(name) + ".mdimporter";
  return NSURL::fileURLWithFileSystemRepresentation(path, true);
}

/// The system root in which the stand-in for the system's mail importer lies, as a variable.
inline std::string testSystemRoot() { return "KBX_SYSTEM_ROOT=" FERNCASE_BUNDLES_DIR "/root"; }

/// What a test's own bundle says in its property list.
struct WrittenBundle {
  std::string executable;                                                    // none when empty
  std::vector<std::pair<std::string, std::string>> factories;                // UUID, function
  std::vector<std::pair<std::string, std::vector<std::string>>> types = {};  // UUID, factories
};

inline std::string propertyListOf(const WrittenBundle& bundle) {
  std::string text = "<plist version=\"1.0\"><dict>";
  if (!bundle.executable.empty())
    text += "<key>CFBundleExecutable</key><string>" + bundle.executable + "</string>";
  text += "<key>CFPlugInFactories</key><dict>";
  for (const auto& [uuid, function] : bundle.factories)
    text += "<key>" + uuid + "</key><string>" + function + "</string>";
  text += "</dict><key>CFPlugInTypes</key><dict>";
  for (const auto& [type, factories] : bundle.types) {
    text += "<key>" + type + "</key><array>";
    for (const auto& factory : factories) text += "<string>" + factory + "</string>";
    text += "</array>";
  }
  return text + "</dict></dict></plist>\n";
}

/// Makes the bundle NAME.mdimporter with this Info.plist in the folder.
inline Ref<NSURL> writeBundle(const TemporaryFolder& folder, const std::string& name,
                              std::string_view propertyList) {
  const std::string contents = name + ".mdimporter/Contents";
  std::filesystem::create_directories(folder / contents);
  folder.write(contents + "/Info.plist", propertyList);
  return folder.url(name + ".mdimporter");
}

}  // namespace kbx
