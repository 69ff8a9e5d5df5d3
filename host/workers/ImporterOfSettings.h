// ImporterOfSettings: the importers that a run asks.
#pragma once

#include "host/import/ImporterChoice.h"
#include "host/workers/ImportSettings.h"

namespace kbx {

/// staging  where messages are staged, if they are (isStaged())
ImporterChoice importersFor(const ImportSettings& settings, Staging* staging);

/// Whether messages are staged: only the mail importer's copies are worth a folder.
inline bool isStaged(const ImportSettings& settings) {
  return settings.usesMailImporter && settings.isStagedPrivately;
}

/// The path of the bundle for messages where no installed one declares their type, or of the one to
/// ask for every file.
std::string importerPath(const ImportSettings& settings);

}  // namespace kbx
