// WorkerOptions: the options with which a command says how its messages are imported.
#pragma once

#include <optional>
#include <string>

#include "host/console/Diagnostics.h"
#include "host/workers/ImportSettings.h"

namespace CLI {
class App;
}

namespace kbx {

/// -j, --isolate, --timeout and -v. The options write into this object, so it stays where it is.
class WorkerOptions {
 public:
  void declareOn(CLI::App& options);
  /// Raises UsageError when they contradict each other.
  void check() const;
  /// What was asked for; the rest of the settings stays as it is.
  ///
  /// log  takes the lines that importers log, where they are wanted; outlives the imports
  void applyTo(ImportSettings& settings, Diagnostics& log) const;

 private:
  std::optional<unsigned> _workers;  // absent for one on each processor
  std::string _isolation = "process";
  std::optional<unsigned> _seconds;  // for one message; absent for the usual limits
  bool _isVerbose = false;
};

}  // namespace kbx
