// ImporterOfSettings: the importers that a run asks.
#pragma once

#include "host/import/ImporterChoice.h"
#include "host/workers/ImportSettings.h"

namespace kbx {

/// staging  where messages are staged, if they are: only the mail importer's copies are worth a
///          folder, and may be wanted beside the message
ImporterChoice importersFor(const ImportSettings& settings, Staging* staging);

/// The path of the bundle for messages where no installed one declares their type, or of the one to
/// ask for every file.
std::string importerPath(const ImportSettings& settings);

}  // namespace kbx
