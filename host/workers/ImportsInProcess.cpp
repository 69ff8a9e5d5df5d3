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
    : _log(settings.log), _importers(importersFor(settings, &_staging)) {}

bool ImportsInProcess::load(std::string* path, std::string* reason) {
  return _importers.loadForMessages(path, reason);
}

void ImportsInProcess::run(const Next& next, const Take& take) {
  while (!Interruption::isWished()) {
    const auto input = next();
    if (!input) return;
    Ref<NSError> error = input->error;
    auto attributes = error ? nullptr : attributesOf(*input, &error);
    take(*input, attributes, attributes ? nullptr : error.get());
  }
}

Ref<NSDictionary> ImportsInProcess::attributesOf(const Input& input, Ref<NSError>* error) {
  if (input.path == kStandardInputName) {
    const StandardInput copy(error);
    return copy.url() ? _importers.attributesOfFile(copy.url(), nullptr, error) : nullptr;
  }
  auto url = locationOf(input, error);
  return url ? _importers.attributesOfFile(url, nullptr, error) : nullptr;
}

}  // namespace kbx
