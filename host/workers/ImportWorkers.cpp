#include "host/workers/ImportWorkers.h"

#include "host/workers/ImportsInProcess.h"
#include "host/workers/ImportsInWorkers.h"

namespace kbx {
namespace {

std::unique_ptr<Imports> importsFor(const ImportSettings& settings) {
  if (settings.isIsolated) return std::make_unique<ImportsInWorkers>(settings);
  return std::make_unique<ImportsInProcess>(settings);
}

}  // namespace

ImportWorkers::ImportWorkers(const ImportSettings& settings) : _imports(importsFor(settings)) {}

ImportWorkers::~ImportWorkers() = default;

bool ImportWorkers::load(std::string* path, std::string* reason) {
  return _imports->load(path, reason);
}

void ImportWorkers::run(const Next& next, const Take& take) {
  _imports->run(next, [&](const Input& input, const Imported& imported) {
    take(input, imported.attributes, imported.error);
  });
}

void ImportWorkers::runMaking(const Next& next, const TakeMade& take) {
  const std::string nothing;
  _imports->run(next, [&](const Input& input, const Imported& imported) {
    take(input, imported.made ? *imported.made : nothing, imported.error);
  });
}

}  // namespace kbx
