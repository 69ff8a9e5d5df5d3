#include "host/import/ImportCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <utility>

#include "host/console/Interruption.h"
#include "host/console/ProgressLine.h"
#include "host/console/StandardStreams.h"
#include "host/console/Terminal.h"
#include "host/import/InputFiles.h"
#include "host/import/PathList.h"
#include "host/results/ResultOptions.h"
#include "host/workers/ImportWorkers.h"
#include "host/workers/WorkerOptions.h"
#include "platform/files/FileNames.h"

namespace kbx {
namespace {

struct Options {
  std::optional<std::string> importer;  // absent for those that are installed
  std::string staging = "private";
  std::optional<std::string> pathList;
  ResultOptions results;
  WorkerOptions workers;
  bool isNulSeparated = false;
  bool isForced = false;
  bool isRaw = false;
};

/// Results that appear on a terminal show the progress themselves, and must not be written over.
unsigned columnsForProgress() {
  return terminalColumns(kStandardOutput) ? 0 : terminalColumns(kStandardError);
}

/// Raised where standard output takes no more: nobody needs the other results.
struct OutputFailed {};

/// The results of one command line, one input after the other.
class ImportResults {
 public:
  ImportResults(AttributeFilter filter, Results& results, Console& console)
      : _filter(std::move(filter)),
        _results(results),
        _console(console),
        _progress(console.diagnostics, columnsForProgress()) {}

  /// Raises OutputFailed.
  void take(const Input& input, NSDictionary* attributes, NSError* error);
  ExitCode exitCode() const {
    if (!_hasFailures) return kDone;
    return _hasDelivered ? kSomeFailed : kNoneDelivered;
  }

 private:
  const AttributeFilter _filter;
  Results& _results;
  Console& _console;
  ProgressLine _progress;
  bool _hasDelivered = false;
  bool _hasFailures = false;
};

void ImportResults::take(const Input& input, NSDictionary* attributes, NSError* error) {
  if (attributes) {
    _hasDelivered = true;
    _results.delivered(input.path, _filter.wantedOf(attributes));
  } else {
    _hasFailures = true;
    _results.failed(input.path, error);
    _console.diagnostics.failure(input.path, error->localizedDescription());
  }
  _progress.count(attributes != nullptr);
  if (!_console.output.flush()) throw OutputFailed();
}

class ImportCommand final : public Command {
 public:
  std::string_view name() const override { return "import"; }
  std::string_view summary() const override {
    return "Print the attributes of messages and of all messages in folders.";
  }
  std::string_view operands() const override { return "PATH..."; }
  std::string_view notes() const override;
  bool takesDefaults() const override { return true; }
  void declareOptions(CLI::App& options) override;
  ExitCode run(std::vector<std::string> operands, Console& console) override;

 private:
  void checkUsage(const std::vector<std::string>& operands) const;
  bool addListedPaths(std::vector<std::string>& operands, Diagnostics& diagnostics) const;
  ImportSettings settingsFor(const std::vector<std::string>& inputs,
                             Diagnostics& diagnostics) const;
  ExitCode importAll(ImportWorkers& workers, std::vector<std::string> operands,
                     Console& console) const;

  Options _options;
};

std::string_view ImportCommand::notes() const {
  return "A folder stands for the messages in it and in the folders inside it: .eml and .emlx "
         "files,\n"
         "and what a Maildir holds. - reads a message from standard input. -- ends the options.\n"
         "\n"
         "-Key VALUE sets one of the user's defaults for this run.\n"
         "\n"
         "Exit codes: 0 done, 1 output cannot be written, 2 wrong usage, 3 some inputs failed,\n"
         "4 none was delivered.";
}

void ImportCommand::declareOptions(CLI::App& options) {
  options.add_option("--importer", _options.importer, "The importer bundle to ask for every file")
      ->type_name("BUNDLE");
  _options.results.declareOn(options);
  options.add_flag("--raw-fallback", _options.isRaw,
                   "Let the importer answer with the raw text of a message");
  options.add_flag("--force", _options.isForced, "Use the mail importer (the default)");
  options
      .add_option("--stage", _options.staging,
                  "Where the mail importer's copy of a message is made: \"private\", in a folder "
                  "of this run, or \"beside\" the message")
      ->type_name("PLACE");
  options.add_option("--files-from", _options.pathList, "Read paths from a file, or - for input")
      ->type_name("FILE");
  options.add_flag("-0", _options.isNulSeparated, "Each path of --files-from ends in a NUL");
  _options.workers.declareOn(options);
}

void ImportCommand::checkUsage(const std::vector<std::string>& operands) const {
  if (operands.empty() && !_options.pathList) throw UsageError("import needs a PATH");
  _options.results.check();
  if (_options.isForced && _options.isRaw)
    throw UsageError("--force and --raw-fallback exclude each other");
  if (_options.staging != "private" && _options.staging != "beside")
    throw UsageError("--stage is private or beside");
  _options.workers.check();
  if (_options.importer && _options.importer->empty())
    throw UsageError("--importer needs a BUNDLE");
  if (_options.pathList && _options.pathList->empty())
    throw UsageError("--files-from needs a FILE");
  if (_options.isNulSeparated && !_options.pathList) throw UsageError("-0 needs --files-from");
  if (std::ranges::count(operands, kStandardInputName) + (_options.pathList == kStandardInputName) >
      1)
    throw UsageError("standard input can be read once");
}

bool ImportCommand::addListedPaths(std::vector<std::string>& operands,
                                   Diagnostics& diagnostics) const {
  if (!_options.pathList) return true;
  Ref<NSError> error;
  if (addPathsFrom(*_options.pathList, _options.isNulSeparated ? '\0' : '\n', operands, &error))
    return true;
  diagnostics.failure(*_options.pathList, error->localizedDescription());
  return false;
}

ImportSettings ImportCommand::settingsFor(const std::vector<std::string>& inputs,
                                          Diagnostics& diagnostics) const {
  ImportSettings settings;
  _options.workers.applyTo(settings, diagnostics);
  settings.inputs = inputs;
  settings.importer = _options.importer;
  settings.usesMailImporter = !_options.isRaw;
  settings.isStagedPrivately = _options.staging == "private";
  return settings;
}

ExitCode ImportCommand::run(std::vector<std::string> operands, Console& console) {
  checkUsage(operands);
  const Interruption noted;
  if (!addListedPaths(operands, console.diagnostics)) return kNoneDelivered;
  ImportWorkers workers(settingsFor(operands, console.diagnostics));
  std::string path, reason;
  if (workers.load(&path, &reason)) return importAll(workers, std::move(operands), console);
  console.diagnostics.failure(path, stringWithFileSystemRepresentation(reason));
  return kNoneDelivered;
}

ExitCode ImportCommand::importAll(ImportWorkers& workers, std::vector<std::string> operands,
                                  Console& console) const {
  const bool isNamedAlone = operands.size() == 1 && !_options.pathList;
  InputFiles inputs(std::move(operands));
  // The text form is another for one file than for several, so one is looked at ahead.
  std::optional<Input> input = inputs.next(), following = inputs.next();
  const auto results = _options.results.makeResults(console.output, !isNamedAlone || following);
  ImportResults taker(_options.results.filter(), *results, console);
  results->begin();
  try {
    workers.run([&] { return std::exchange(input, std::exchange(following, inputs.next())); },
                [&](auto&&... result) { taker.take(result...); });
  } catch (const OutputFailed&) {
    return kBroken;
  }
  results->end();
  return taker.exitCode();
}

}  // namespace

std::unique_ptr<Command> makeImportCommand() { return std::make_unique<ImportCommand>(); }

}  // namespace kbx
