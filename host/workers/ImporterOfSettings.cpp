#include "host/workers/ImporterOfSettings.h"

namespace kbx {

std::string importerPath(const ImportSettings& settings) {
  return settings.importer.value_or("/Library/Spotlight/FerncaseSpotlightImporter.mdimporter");
}

ImporterChoice importersFor(const ImportSettings& settings, Staging* staging) {
  const bool isNeeded = settings.usesMailImporter;  // raw text is read where it lies
  const ImporterChoice::Messages messages{
      isNeeded, isNeeded && settings.isStagedPrivately ? staging : nullptr,
      isNeeded ? staging : nullptr};
  if (settings.importer) return {{}, importerPath(settings), messages};
  return {installedImporters(), importerPath(settings), messages};
}

}  // namespace kbx
