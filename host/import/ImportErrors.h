// ImportErrors: why an importer gave no attributes, as far as its log tells.
#pragma once

#include <string_view>

#include "host/import/ImportLog.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// The error of an import that failed. Never absent.
///
/// lines               what the importer logged during the call
/// mailImporterReason  why the mail importer could not be loaded; empty when it was not needed, or
///                     when nothing is known
///
/// The importer logs the error that it failed with; its domain, code and description are taken
/// over. An importer that could not load the mail importer has no error to log: then the reason
/// says so. Otherwise the error is FerncaseImportFailedError with the last line of the log.
Ref<NSError> importError(const ImportLog::Lines& lines, std::string_view mailImporterReason);

/// Whether the mail importer could not read what it was given. An importer that hosts it makes do
/// with what came back, perhaps nothing, which would look like an empty message.
bool tellsOfMailError(const ImportLog::Lines& lines);

}  // namespace kbx
