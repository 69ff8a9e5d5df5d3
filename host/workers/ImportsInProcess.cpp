#include "host/workers/ImportsInProcess.h"

#include "host/console/FerncaseErrors.h"
#include "host/console/Interruption.h"
#include "host/import/StandardInput.h"
#include "host/workers/ImporterOfSettings.h"

namespace kbx {

Ref<NSURL> locationOf(const Input& input, Ref<NSError>* error) {
  auto url = NSURL::fileURLWithFileSystemRepresentation(input.path, false);
  if (!url) *error = ferncaseError(FerncaseImpossiblePathError, "No file can have this path.");
  return url;
}

ImportsInProcess::ImportsInProcess(const ImportSettings& settings)
    : _log(settings.log), _importers(importersFor(settings, &_staging)), _maker(settings.maker) {}

bool ImportsInProcess::load(std::string* path, std::string* reason) {
  return _importers.loadForMessages(path, reason);
}

void ImportsInProcess::run(const Next& next, const Take& take) {
  while (!Interruption::isWished()) {
    const auto input = next();
    if (!input) return;
    take(*input, import(*input));
  }
}

Imported ImportsInProcess::import(const Input& input) {
  Imported imported;
  imported.error = input.error;
  if (imported.error) return imported;
  if (input.path == kStandardInputName) {
    const StandardInput copy(&imported.error);
    return copy.url() ? importFile(copy.url()) : imported;
  }
  const auto url = locationOf(input, &imported.error);
  return url ? importFile(url) : imported;
}

Imported ImportsInProcess::importFile(NSURL* file) {
  Imported imported;
  if (_maker) _maker->begin(file->fileSystemRepresentation());
  imported.attributes = _importers.attributesOfFile(file, nullptr, &imported.error);
  if (imported.attributes && _maker) {
    imported.made = _maker->make(imported.attributes, &imported.error);
    imported.attributes = nullptr;
  }
  if (imported.attributes || imported.made) imported.error = nullptr;
  return imported;
}

}  // namespace kbx
