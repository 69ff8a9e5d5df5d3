// ImportsInProcess: imports one file after the other, here.
#pragma once

#include <memory>

#include "host/import/ImportLog.h"
#include "host/import/ImporterChoice.h"
#include "host/workers/ImportSettings.h"
#include "host/workers/Imports.h"

namespace kbx {

/// Nothing stands between an importer and this process: its crash is a crash here.
class ImportsInProcess final : public Imports {
 public:
  explicit ImportsInProcess(const ImportSettings& settings);

  bool load(std::string* path, std::string* reason) override;
  void run(const Next& next, const Take& take) override;

 private:
  Imported import(const Input& input);
  Imported importFile(NSURL* file);

  ImportLog _log;
  ScopedService<ClassicLog> _installed{_log};
  Staging _staging;
  ImporterChoice _importers;
  const std::shared_ptr<MessageMaker> _maker;
};

}  // namespace kbx
