#include "host/show/ShowCommand.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "host/console/FerncaseErrors.h"
#include "host/export/StoredPlace.h"
#include "host/results/ResultOptions.h"
#include "host/store/StoreOption.h"
#include "platform/text/ASCII.h"

namespace kbx {
namespace {

struct Options {
  StoreOption store;
  ResultOptions results;
};

/// The id that a word of digits is.
std::optional<std::int64_t> idIn(std::string_view word) {
  std::int64_t id = 0;
  const char* const end = word.data() + word.size();
  const auto [stop, failure] = std::from_chars(word.data(), end, id);
  const bool isId = failure == std::errc() && stop == end && isASCIIDigit(word.front());
  return isId ? std::optional(id) : std::nullopt;
}

/// The paths under which the store may know a file, whether it is there or not: as its folder is
/// without links, as it was named, and where the file itself leads when it is a link.
std::vector<std::string> placesFor(const std::string& operand) {
  std::error_code failure;
  const auto named = std::filesystem::absolute(operand, failure).lexically_normal();
  const auto folder = std::filesystem::weakly_canonical(named.parent_path(), failure);
  std::vector<std::string> places{(folder / named.filename()).string()};
  if (named != places[0]) places.push_back(named.string());
  const auto target = std::filesystem::weakly_canonical(operand, failure);
  if (!failure && target != places[0]) places.push_back(target.string());
  return places;
}

/// The messages of one command line, one after the other.
class ShowRun {
 public:
  ShowRun(StoreReader& store, AttributeFilter filter, Results& results, Diagnostics& diagnostics)
      : _store(store), _filter(std::move(filter)), _results(results), _diagnostics(diagnostics) {}

  void show(const std::string& operand);
  ExitCode exitCode() const {
    if (!_hasFailures) return kDone;
    return _hasShown ? kSomeFailed : kNoneDelivered;
  }

 private:
  std::optional<std::int64_t> find(const std::string& operand, Ref<NSError>* error);
  bool showId(std::int64_t id, Ref<NSError>* error);
  void tellPresence(const StoredPlace& place);

  StoreReader& _store;
  const AttributeFilter _filter;
  Results& _results;
  Diagnostics& _diagnostics;
  bool _hasShown = false;
  bool _hasFailures = false;
};

std::optional<std::int64_t> ShowRun::find(const std::string& operand, Ref<NSError>* error) {
  if (const auto id = idIn(operand)) return id;
  for (const std::string& place : placesFor(operand))
    if (const auto id = _store.idOfPath(place, error); id || *error) return id;
  return std::nullopt;
}

void ShowRun::show(const std::string& operand) {
  Ref<NSError> error;
  const auto id = operand.empty() ? std::nullopt : find(operand, &error);
  if (id && showId(*id, &error)) {
    _hasShown = true;
    return;
  }
  if (!error) error = ferncaseError(FerncaseNoMessagesError, "The store knows no such message.");
  _hasFailures = true;
  _results.failed(operand, error);
  _diagnostics.failure(operand, error->localizedDescription());
}

bool ShowRun::showId(std::int64_t id, Ref<NSError>* error) {
  const auto place = storedPlace(_store, id, error);
  if (!place) return false;
  if (place->failure) {
    *error = ferncaseError(FerncaseImportFailedError, *place->failure);
    return false;
  }
  const auto attributes = _store.attributesOf(id, error);
  if (!attributes) return false;
  _results.delivered(place->path, _filter.wantedOf(attributes));
  tellPresence(*place);
  return true;
}

void ShowRun::tellPresence(const StoredPlace& place) {
  switch (presenceOf(place)) {
    case Presence::Same:
      return;
    case Presence::Changed:
      return _diagnostics.failure(place.path, "It has changed since it was indexed."_ns);
    case Presence::Gone:
      return _diagnostics.failure(place.path, "It is gone since it was indexed."_ns);
  }
}

class ShowCommand final : public Command {
 public:
  std::string_view name() const override { return "show"; }
  std::string_view summary() const override {
    return "Print the attributes of messages from the store.";
  }
  std::string_view operands() const override { return "PATH|ID..."; }
  std::string_view notes() const override {
    return "The files are not read; when one has changed or is gone since it was indexed, that is\n"
           "told on standard error. An ID is the number of a message in the store, as export\n"
           "--format=bulk prints it; a file whose name is a number is written ./17.\n"
           "\n"
           "Exit codes: 0 done, 1 output cannot be written, 2 wrong usage, 3 some are not known,\n"
           "4 none is, 5 no store to read.";
  }
  void declareOptions(CLI::App& options) override;
  ExitCode run(std::vector<std::string> operands, Console& console) override;

 private:
  Options _options;
};

void ShowCommand::declareOptions(CLI::App& options) {
  _options.store.declareOn(options);
  _options.results.declareOn(options);
}

ExitCode ShowCommand::run(std::vector<std::string> operands, Console& console) {
  if (operands.empty()) throw UsageError("show needs a PATH or an ID");
  _options.results.check();
  Ref<NSError> error;
  const auto store = StoreReader::open(_options.store.path(), &error);
  if (!store) {
    console.diagnostics.failure(error);
    return kStoreFailed;
  }
  const auto results = _options.results.makeResults(console.output, operands.size() > 1);
  ShowRun run(*store, _options.results.filter(), *results, console.diagnostics);
  results->begin();
  for (const std::string& operand : operands) {
    run.show(operand);
    if (!console.output.flush()) return kBroken;
  }
  results->end();
  return run.exitCode();
}

}  // namespace

std::unique_ptr<Command> makeShowCommand() { return std::make_unique<ShowCommand>(); }

}  // namespace kbx
