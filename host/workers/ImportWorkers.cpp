#include "host/workers/ImportWorkers.h"

#include "host/console/FerncaseErrors.h"
#include "host/console/Interruption.h"
#include "host/import/ImportLog.h"
#include "host/import/ImporterChoice.h"
#include "host/import/StandardInput.h"

namespace kbx {
namespace {

constexpr char kDefaultImporter[] = "/Library/Spotlight/FerncaseSpotlightImporter.mdimporter";

ImporterChoice choiceFor(const ImportSettings& settings, Staging* staging) {
  const ImporterChoice::Messages messages{settings.usesMailImporter, staging};
  if (settings.importer) return {{}, *settings.importer, messages};
  return {installedImporters(), kDefaultImporter, messages};
}

Ref<NSDictionary> attributesOf(const Input& input, ImporterChoice& importers, Ref<NSError>* error) {
  if (input.path == kStandardInputName) {
    const StandardInput copy(error);
    return copy.url() ? importers.attributesOfFile(copy.url(), error) : nullptr;
  }
  auto url = NSURL::fileURLWithFileSystemRepresentation(input.path, false);
  if (url) return importers.attributesOfFile(url, error);
  *error = ferncaseError(FerncaseImpossiblePathError, "No file can have this path.");
  return nullptr;
}

}  // namespace

class ImportWorkers::Way {
 public:
  virtual ~Way() = default;
  virtual bool load(std::string* path, std::string* reason) = 0;
  virtual void run(const Next& next, const Take& take) = 0;
};

class ImportWorkers::InProcess final : public Way {
 public:
  explicit InProcess(const ImportSettings& settings)
      : _log(settings.log), _importers(choiceFor(settings, stagingFor(settings))) {}

  bool load(std::string* path, std::string* reason) override {
    return _importers.loadForMessages(path, reason);
  }

  void run(const Next& next, const Take& take) override {
    while (!Interruption::isWished()) {
      const auto input = next();
      if (!input) return;
      Ref<NSError> error = input->error;
      auto attributes = error ? nullptr : attributesOf(*input, _importers, &error);
      take(*input, attributes, attributes ? nullptr : error.get());
    }
  }

 private:
  /// Only the mail importer's copies are worth a folder.
  Staging* stagingFor(const ImportSettings& settings) {
    const bool isStaged = settings.usesMailImporter && settings.isStagedPrivately;
    return isStaged ? &_staging.emplace() : nullptr;
  }

  ImportLog _log;
  ScopedService<ClassicLog> _installed{_log};
  std::optional<Staging> _staging;
  ImporterChoice _importers;
};

ImportWorkers::ImportWorkers(const ImportSettings& settings)
    : _way(std::make_unique<InProcess>(settings)) {}

ImportWorkers::~ImportWorkers() = default;

bool ImportWorkers::load(std::string* path, std::string* reason) {
  return _way->load(path, reason);
}

void ImportWorkers::run(const Next& next, const Take& take) { _way->run(next, take); }

}  // namespace kbx
