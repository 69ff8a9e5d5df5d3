#include "host/index/IndexCommand.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <optional>

#include "host/console/Escaping.h"
#include "host/console/Interruption.h"
#include "host/console/ProgressLine.h"
#include "host/console/StandardStreams.h"
#include "host/console/Terminal.h"
#include "host/index/IndexReport.h"
#include "host/index/IndexRun.h"
#include "host/index/IndexStatus.h"
#include "host/index/IndexedFolders.h"
#include "host/index/Places.h"
#include "host/store/Maintenance.h"
#include "host/store/StoreOption.h"
#include "host/workers/WorkerOptions.h"
#include "platform/preferences/NSUserDefaults.h"

namespace kbx {
namespace {

struct Options {
  StoreOption store;
  std::optional<std::string> forget;  // absent for none
  WorkerOptions workers;
  bool retriesFailures = false;
  bool isQuiet = false;
  bool hasEvents = false;
  bool isJSON = false;
};

enum class Task : std::uint8_t { Index, Status, Check, Optimize };

/// The place of what may not be there any more.
std::string formerPlaceOf(const std::string& operand) {
  std::error_code failure;
  const auto place = std::filesystem::weakly_canonical(operand, failure);
  const auto path = failure ? std::filesystem::path(operand) : place;
  return path.has_filename() ? path.string() : path.parent_path().string();
}

class IndexCommand final : public Command {
 public:
  std::string_view name() const override { return "index"; }
  std::string_view summary() const override {
    return "Keep a store up to date with folders of messages, to be searched.";
  }
  std::string_view operands() const override { return "[DIR...] | status | check | optimize"; }
  std::string_view notes() const override;
  bool takesDefaults() const override { return true; }
  void declareOptions(CLI::App& options) override;
  ExitCode run(std::vector<std::string> operands, Console& console) override;

 private:
  void checkUsage(Task task, const std::vector<std::string>& operands) const;
  ExitCode index(const std::vector<std::string>& operands, Console& console) const;
  ExitCode runOver(StoreWriter& store, const std::vector<std::string>& roots,
                   Console& console) const;
  ExitCode forget(Console& console) const;
  ExitCode check(Console& console) const;
  ExitCode optimize(Console& console) const;

  Options _options;
};

std::string_view IndexCommand::notes() const {
  return "A DIR is a folder with messages (.eml, .emlx, Maildir) in it and in the folders inside\n"
         "it, or a single message. Without one the folders that were indexed before are brought "
         "up\n"
         "to date.\n"
         "\n"
         "  status    what the store holds, and the files that gave no message\n"
         "  check     read the whole store and name what is wrong with it\n"
         "  optimize  bring the store into the form that is searched fastest\n"
         "\n"
         "A folder with one of these names is written ./status.\n"
         "\n"
         "Exit codes: 0 done, 1 check found something or output cannot be written, 2 wrong usage,\n"
         "3 some inputs failed, 4 none could be read or the importer is missing,\n"
         "5 the store cannot be read or written.";
}

void IndexCommand::declareOptions(CLI::App& options) {
  _options.store.declareOn(options);
  options
      .add_option("--forget", _options.forget,
                  "Remove a folder and its messages from the store, and index it no more")
      ->type_name("DIR");
  options.add_flag("--retry", _options.retriesFailures,
                   "Import again what failed before and has not changed");
  options.add_flag("-q,--quiet", _options.isQuiet, "Tell of failures alone");
  options.add_flag("--ndjson", _options.hasEvents, "Print one JSON object for each event");
  options.add_flag("--json", _options.isJSON, "With status: print one JSON object");
  _options.workers.declareOn(options);
}

Task taskOf(const std::vector<std::string>& operands) {
  const std::string_view word = operands.size() == 1 ? std::string_view(operands[0]) : "";
  if (word == "status") return Task::Status;
  if (word == "check") return Task::Check;
  return word == "optimize" ? Task::Optimize : Task::Index;
}

void IndexCommand::checkUsage(Task task, const std::vector<std::string>& operands) const {
  const bool hasIndexOptions = _options.retriesFailures || _options.hasEvents || _options.forget;
  if (task != Task::Index && hasIndexOptions)
    throw UsageError("--retry, --ndjson and --forget do not go with " + operands[0]);
  if (task != Task::Status && _options.isJSON) throw UsageError("--json goes with status alone");
  _options.workers.check();
  if (_options.forget && !operands.empty()) throw UsageError("--forget takes one DIR and no other");
  if (_options.forget && _options.forget->empty()) throw UsageError("--forget needs a DIR");
}

ExitCode IndexCommand::run(std::vector<std::string> operands, Console& console) {
  const Task task = taskOf(operands);
  checkUsage(task, operands);
  switch (task) {
    case Task::Status:
      return printIndexStatus(_options.store.path(), _options.isJSON, console);
    case Task::Check:
      return check(console);
    case Task::Optimize:
      return optimize(console);
    case Task::Index:
      break;
  }
  return _options.forget ? forget(console) : index(operands, console);
}

// ---- Indexing -----------------------------------------------------------------------------------

ExitCode IndexCommand::index(const std::vector<std::string>& operands, Console& console) const {
  const std::string path = _options.store.path();
  std::vector<std::string> places = placesOf(operands, console);
  if (!operands.empty() && places.empty()) return kNoneDelivered;
  Ref<NSError> error;
  auto store = StoreWriter::open(path, &error);
  if (!store || !rememberFolders(*store, outermost(places), &error)) {
    console.diagnostics.failure(error);
    return kStoreFailed;
  }
  const bool hasFailures = places.size() < operands.size();
  if (operands.empty()) {
    auto remembered = indexedPlaces(store->database(), &error);
    if (!remembered) {
      console.diagnostics.failure(error);
      return kStoreFailed;
    }
    if (remembered->empty()) throw UsageError("index needs a DIR, as no folder was indexed before");
    places = std::move(*remembered);
  }
  const ExitCode code = runOver(*store, outermost(std::move(places)), console);
  return code == kDone && hasFailures ? kSomeFailed : code;
}

ExitCode exitCodeOf(IndexRun::End end, const IndexRun& run) {
  const IndexCounts& counts = run.counts();
  const bool hasAny =
      counts.added + counts.changed + counts.moved + counts.removed + counts.unchanged != 0;
  switch (end) {
    case IndexRun::End::Futile:
      return kNoneDelivered;
    case IndexRun::End::NoImporter:  // perhaps in the middle of the work
      return counts.added + counts.changed != 0 ? kSomeFailed : kNoneDelivered;
    case IndexRun::End::StoreFailed:
      return kStoreFailed;
    case IndexRun::End::Interrupted:  // the signal itself ends the process
    case IndexRun::End::Done:
      break;
  }
  if (!run.hasTroubles()) return kDone;
  return hasAny ? kSomeFailed : kNoneDelivered;
}

ExitCode IndexCommand::runOver(StoreWriter& store, const std::vector<std::string>& roots,
                               Console& console) const {
  const Interruption noted;
  IndexReport report(console, wishesFor(_options.hasEvents, _options.isQuiet));
  IndexSettings settings;
  _options.workers.applyTo(settings.imports, console.diagnostics);
  settings.retriesFailures = _options.retriesFailures;
  const auto batch = NSUserDefaults::standardUserDefaults()->integerForKey("IndexBatchFiles"_ns);
  if (batch > 0) settings.batch.files = static_cast<std::uint64_t>(batch);
  IndexRun run(store, settings, report);
  Ref<NSError> error;
  const IndexRun::End end = run.run(roots, &error);
  report.summarize(run.counts());
  if (error) console.diagnostics.failure(error);
  return exitCodeOf(end, run);
}

// ---- The store as a whole -----------------------------------------------------------------------

ExitCode IndexCommand::forget(Console& console) const {
  Ref<NSError> error;
  std::uint64_t forgotten = 0;
  auto store = StoreWriter::open(_options.store.path(), &error);
  if (!store || !forgetFolder(*store, formerPlaceOf(*_options.forget), &forgotten, &error)) {
    console.diagnostics.failure(error);
    return kStoreFailed;
  }
  if (!_options.isQuiet) console.diagnostics.message(std::to_string(forgotten) + " removed");
  return kDone;
}

ExitCode IndexCommand::check(Console& console) const {
  Ref<NSError> error;
  std::optional<ProgressLine> line;
  line.emplace(console.diagnostics, _options.isQuiet ? 0 : terminalColumns(kStandardError));
  const auto findings =
      checkStore(_options.store.path(), &error,
                 {.begins = [&](std::uint64_t steps) { line->expect(steps); },
                  .advances = [&](std::uint64_t steps) { line->advance(steps); }});
  line.reset();
  if (!findings) {
    console.diagnostics.failure(error);
    return kStoreFailed;
  }
  for (const std::string& finding : *findings) {
    writeOnOneLine(console.output, NSString::stringWithLossyUTF8(finding));
    console.output.write('\n');
  }
  if (findings->empty() && !_options.isQuiet) console.diagnostics.message("the store is sound");
  return findings->empty() ? kDone : kUndone;
}

ExitCode IndexCommand::optimize(Console& console) const {
  Ref<NSError> error;
  if (optimizeStore(_options.store.path(), &error)) return kDone;
  console.diagnostics.failure(error);
  return kStoreFailed;
}

}  // namespace

std::unique_ptr<Command> makeIndexCommand() { return std::make_unique<IndexCommand>(); }

}  // namespace kbx
