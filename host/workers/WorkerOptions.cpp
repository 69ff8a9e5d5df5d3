#include "host/workers/WorkerOptions.h"

#include <CLI/CLI.hpp>

#include "host/console/Command.h"

namespace kbx {

void WorkerOptions::declareOn(CLI::App& options) {
  options.add_option("-j", _workers, "How many messages are imported at the same time")
      ->type_name("N")
      ->check(CLI::Range(1, 256));
  options
      .add_option("--isolate", _isolation,
                  "Where importers run: \"process\", in processes that can do nothing else, or "
                  "\"none\", in this one")
      ->type_name("HOW");
  options.add_option("--timeout", _seconds, "How long one message may take at the most")
      ->type_name("SECONDS")
      ->check(CLI::Range(1, 86400));
  options.add_flag("-v,--verbose", _isVerbose, "Print what the importer logs to standard error");
}

void WorkerOptions::check() const {
  if (_isolation != "process" && _isolation != "none")
    throw UsageError("--isolate is process or none");
  if (_isolation == "none" && (_workers > 1u || _seconds))
    throw UsageError("--isolate=none excludes -j and --timeout");
}

void WorkerOptions::applyTo(ImportSettings& settings, Diagnostics& log) const {
  settings.workers = _workers.value_or(0);
  settings.isIsolated = _isolation == "process";
  if (_seconds) settings.limits.seconds = settings.limits.processorSeconds = *_seconds;
  if (_isVerbose) settings.log = &log;
}

}  // namespace kbx
