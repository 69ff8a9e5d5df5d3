// ImporterChoice: which importer is asked for a file.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/import/FileImporter.h"
#include "host/import/ImporterCatalog.h"

namespace kbx {

/// Asks the importer whose bundle declares the type of a file's name, the first one in the
/// catalog. Files of a type that nobody declares count as messages. Importers are loaded when they
/// are needed. Belongs to one thread at a time.
class ImporterChoice {
 public:
  struct Messages {
    bool usesMailImporter = true;
    Staging* staging = nullptr;          // nullptr for the messages' own folders
    Staging* stagingOfCopies = nullptr;  // the same for messages that are read from a copy
  };

  /// catalog  where importers are chosen from; must hold one for messages, or `fallback` takes them
  ImporterChoice(std::vector<InstalledImporter> catalog, std::string fallback, Messages messages);

  /// Whether there is an importer for messages; otherwise the reason says why, after the path of
  /// the bundle that was tried.
  bool loadForMessages(std::string* path, std::string* reason);

  /// As FileImporter answers; an importer that cannot be loaded is an error.
  Ref<NSDictionary> attributesOfFile(NSURL* file, NSURL* contents, Ref<NSError>* error);

 private:
  struct Loaded {
    std::unique_ptr<ImporterBundle> bundle;
    std::string reason;  // why there is none
  };

  const std::string& bundleFor(std::string_view type) const;
  const Loaded& load(const std::string& path);

  const std::vector<InstalledImporter> _catalog;
  const std::string _fallback;
  const Messages _messages;
  std::map<std::string, Loaded> _loaded;  // by the path of the bundle
};

}  // namespace kbx
