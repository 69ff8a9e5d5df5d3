// ImporterCatalog: the importer bundles that are installed, and what they are for.
#pragma once

#include <string>
#include <vector>

#include "platform/files/NSURL.h"

namespace kbx {

struct InstalledImporter {
  std::string path;                // of the bundle, as it really lies
  std::vector<std::string> types;  // the type identifiers that its Info.plist declares, in order

  bool takes(std::string_view type) const;
};

/// The folders in which importers are looked for, those that count more first: the user's
/// ("ferncase/Library/Spotlight" in the folder of the user's data), then the system's two below
/// the system root.
std::vector<std::string> importerFolders();

/// The bundles in these folders; within a folder in the order of their names' bytes. What cannot
/// be read is left out, and a bundle without a readable Info.plist has no types.
std::vector<InstalledImporter> installedImporters();

}  // namespace kbx
