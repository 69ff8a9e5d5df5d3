#include "host/export/ExportCommand.h"

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/console/Interruption.h"
#include "host/export/ExportWriter.h"
#include "host/export/ReplacedFile.h"
#include "host/export/StoredPlace.h"
#include "host/search/Search.h"
#include "host/store/StoreOption.h"

namespace kbx {
namespace {

struct Options {
  std::string format = "ndjson";
  std::string index = "mail";
  std::string file;  // empty for standard output
  StoreOption store;
};

/// One export: which messages, and where they go.
class ExportRun {
 public:
  ExportRun(StoreReader& store, ExportWriter& writer, Output& output, Diagnostics& diagnostics)
      : _store(store), _writer(writer), _output(output), _diagnostics(diagnostics) {}

  /// False with an error when the store cannot be read.
  bool exportAll(Ref<NSError>* error);
  bool exportFound(const std::string& query, Ref<NSError>* error);

  bool hasExported() const { return _hasExported; }
  bool hasFailures() const { return _hasFailures; }

 private:
  bool take(std::int64_t id, const std::string& path, Ref<NSError>* error);

  StoreReader& _store;
  ExportWriter& _writer;
  Output& _output;
  Diagnostics& _diagnostics;
  bool _hasExported = false;
  bool _hasFailures = false;
};

/// Whether to go on. A message that is gone from the store meanwhile is none.
bool ExportRun::take(std::int64_t id, const std::string& path, Ref<NSError>* error) {
  const auto attributes = _store.attributesOf(id, error);
  if (!attributes) return !*error;
  Ref<NSError> failure;
  if (_writer.write({id, path, attributes}, &failure)) {
    _hasExported = true;
  } else {
    _hasFailures = true;
    _diagnostics.failure(path, failure->localizedDescription());
  }
  return _output.failure() == 0 && !Interruption::isWished();
}

bool ExportRun::exportAll(Ref<NSError>* error) {
  Ref<NSError> failure;
  const auto takeFile = [&](const StoredFile& file) {
    return file.failure || take(file.id, std::string(file.path), &failure);
  };
  const bool isRead = _store.eachFileBelow("/", takeFile, error);
  if (failure) *error = failure;
  return isRead && !failure;
}

bool ExportRun::exportFound(const std::string& query, Ref<NSError>* error) {
  Ref<NSError> failure;
  Search search(_store, parseQuery(query), {.order = SearchSettings::Order::Path});
  const auto takeId = [&](std::int64_t id) {
    const auto place = storedPlace(_store, id, &failure);
    return place ? take(id, place->path, &failure) : !failure;
  };
  const bool isRead = search.run(takeId, error);
  if (failure) *error = failure;
  return isRead && !failure;
}

class ExportCommand final : public Command {
 public:
  std::string_view name() const override { return "export"; }
  std::string_view summary() const override {
    return "Print what the store holds in a form that other programs take.";
  }
  std::string_view operands() const override { return "[QUERY...]"; }
  std::string_view notes() const override;
  bool isOperand(std::string_view word) const override;
  void declareOptions(CLI::App& options) override;
  ExitCode run(std::vector<std::string> operands, Console& console) override;

 private:
  void checkUsage() const;
  std::unique_ptr<StoreReader> openStore(Console& console) const;
  std::unique_ptr<ExportWriter> makeWriter(Output& output) const;
  ExitCode exportTo(Output& output, StoreReader& store, const std::string& query,
                    Console& console) const;
  ExitCode exportToFile(StoreReader& store, const std::string& query, Console& console) const;

  Options _options;
};

std::string_view ExportCommand::notes() const {
  return "Without a QUERY everything is exported, in the order of the paths. A QUERY is what "
         "search takes.\n"
         "\n"
         "  ndjson  one object a line, with all attributes, as import --ndjson prints them\n"
         "  bulk    two lines for each message, for the bulk interface of a search cluster\n"
         "  mbox    the messages themselves, read from their files (mboxrd)\n"
         "\n"
         "Exit codes: 0 done, 1 nothing was found or output cannot be written,\n"
         "2 wrong query or usage, 3 some messages could not be read, 4 none could,\n"
         "5 no store to read.";
}

bool ExportCommand::isOperand(std::string_view word) const {
  return word.size() > 1 && word[0] == '-' && word[1] != '-' && word != "-h" && word != "-o";
}

void ExportCommand::declareOptions(CLI::App& options) {
  options.add_option("--format", _options.format, "ndjson (the default), bulk or mbox")
      ->type_name("FORMAT");
  options
      .add_option("--index", _options.index,
                  "With bulk: the name of the index that takes the messages; otherwise mail")
      ->type_name("NAME");
  options
      .add_option("-o,--output", _options.file,
                  "Write to a file, which is there when it is complete")
      ->type_name("FILE");
  _options.store.declareOn(options);
}

void ExportCommand::checkUsage() const {
  const std::string& format = _options.format;
  if (format != "ndjson" && format != "bulk" && format != "mbox")
    throw UsageError("--format is ndjson, bulk or mbox");
  if (_options.index.empty()) throw UsageError("--index needs a NAME");
  if (format != "bulk" && _options.index != "mail") throw UsageError("--index goes with bulk");
}

std::unique_ptr<StoreReader> ExportCommand::openStore(Console& console) const {
  Ref<NSError> error;
  auto store = StoreReader::open(_options.store.path(), &error);
  if (!store) console.diagnostics.failure(error);
  return store;
}

std::unique_ptr<ExportWriter> ExportCommand::makeWriter(Output& output) const {
  if (_options.format == "bulk") return makeBulkExport(output, _options.index);
  return _options.format == "mbox" ? makeMboxExport(output) : makeLineExport(output);
}

ExitCode ExportCommand::exportTo(Output& output, StoreReader& store, const std::string& query,
                                 Console& console) const {
  const auto writer = makeWriter(output);
  ExportRun run(store, *writer, output, console.diagnostics);
  Ref<NSError> error;
  const bool isRead = query.empty() ? run.exportAll(&error) : run.exportFound(query, &error);
  if (!isRead) {
    console.diagnostics.failure(error);
    return kStoreFailed;
  }
  if (run.hasFailures()) return run.hasExported() ? kSomeFailed : kNoneDelivered;
  return run.hasExported() || query.empty() ? kDone : kUndone;
}

ExitCode ExportCommand::exportToFile(StoreReader& store, const std::string& query,
                                     Console& console) const {
  Ref<NSError> error;
  const auto file = ReplacedFile::open(_options.file, &error);
  const ExitCode code = file ? exportTo(file->output(), store, query, console) : kUndone;
  const bool isToKeep =
      file && code != kUndone && code != kStoreFailed && !Interruption::isWished();
  if (file && !isToKeep) return code;
  if (file && file->finish(&error)) return code;
  console.diagnostics.failure(_options.file, error->localizedDescription());
  return kUndone;
}

ExitCode ExportCommand::run(std::vector<std::string> operands, Console& console) {
  checkUsage();
  std::string query;
  for (const std::string& word : operands) query += (query.empty() ? "" : " ") + word;
  const Interruption noted;
  try {
    if (!query.empty()) parseQuery(query);  // told before what is wrong with the store
    const auto store = openStore(console);
    if (!store) return kStoreFailed;
    return _options.file.empty() ? exportTo(console.output, *store, query, console)
                                 : exportToFile(*store, query, console);
  } catch (const QueryFault& fault) {
    console.diagnostics.text(faultText(query, fault));
    return kMisused;
  }
}

}  // namespace

std::unique_ptr<Command> makeExportCommand() { return std::make_unique<ExportCommand>(); }

}  // namespace kbx
