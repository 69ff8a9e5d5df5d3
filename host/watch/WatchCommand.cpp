#include "host/watch/WatchCommand.h"

#include <CLI/CLI.hpp>
#include <optional>
#include <utility>

#include "host/console/Interruption.h"
#include "host/index/IndexedFolders.h"
#include "host/index/Places.h"
#include "host/store/StoreErrors.h"
#include "host/store/StoreOption.h"
#include "host/watch/StoreIndex.h"
#include "host/watch/WatchReport.h"
#include "host/workers/WorkerOptions.h"
#include "platform/files/FileSystem.h"

namespace kbx {
namespace {

struct Options {
  StoreOption store;
  WorkerOptions workers;
  bool isQuiet = false;
  bool hasEvents = false;
};

class WatchCommand final : public Command {
 public:
  std::string_view name() const override { return "watch"; }
  std::string_view summary() const override {
    return "Keep a store up to date while messages come, change and go.";
  }
  std::string_view operands() const override { return "[DIR...]"; }
  std::string_view notes() const override {
    return "First brings the store up to date as index does, then follows what happens in the "
           "folders\n"
           "until it is ended (Ctrl-C, SIGTERM). Without a DIR it follows the folders that were "
           "indexed\n"
           "before. As a service of the user: systemctl --user enable --now ferncase-watch\n"
           "\n"
           "Exit codes: 0 ended as wished, 1 output cannot be written, 2 wrong usage,\n"
           "4 none of the folders is there, 5 the store cannot be read or written.";
  }
  bool takesDefaults() const override { return true; }
  void declareOptions(CLI::App& options) override;
  ExitCode run(std::vector<std::string> operands, Console& console) override;

 private:
  ExitCode follow(const std::string& store, std::vector<std::string> roots, FolderWatcher& watcher,
                  Console& console) const;

  Options _options;
};

void WatchCommand::declareOptions(CLI::App& options) {
  _options.store.declareOn(options);
  options.add_flag("-q,--quiet", _options.isQuiet, "Tell of troubles alone");
  options.add_flag("--ndjson", _options.hasEvents, "Print one JSON object for each event");
  _options.workers.declareOn(options);
}

/// Takes away those that are files: a watch is of folders.
void leaveFoldersOnly(std::vector<std::string>& places, Diagnostics& diagnostics) {
  std::erase_if(places, [&](const std::string& place) {
    FileStatus status;
    if (FileSystem::current().statusOfPath(place, &status) < 0 || status.isFolder()) return false;
    diagnostics.failure(place, "It is no folder, and is not followed."_ns);
    return true;
  });
}

std::optional<std::vector<std::string>> rememberedFolders(const std::string& store,
                                                          Ref<NSError>* error) {
  const auto reader = StoreReader::open(store, error);
  return reader ? indexedPlaces(reader->database(), error) : std::nullopt;
}

/// Absent with an exit code when there is nothing to follow.
std::optional<std::vector<std::string>> rootsFor(const std::vector<std::string>& operands,
                                                 const std::string& store, Console& console,
                                                 ExitCode* code) {
  std::vector<std::string> places = placesOf(operands, console);
  leaveFoldersOnly(places, console.diagnostics);
  *code = kNoneDelivered;
  if (!operands.empty() && places.empty()) return std::nullopt;
  places = outermost(std::move(places));
  if (!operands.empty()) return places;
  *code = kStoreFailed;
  Ref<NSError> error;
  auto remembered = rememberedFolders(store, &error);
  if (!remembered && error->code() != StoreMissingError) {
    console.diagnostics.failure(error);
    return std::nullopt;
  }
  if (remembered) leaveFoldersOnly(*remembered, console.diagnostics);
  if (!remembered || remembered->empty())
    throw UsageError("watch needs a DIR, as no folder was indexed before");
  return outermost(std::move(*remembered));
}

ExitCode WatchCommand::run(std::vector<std::string> operands, Console& console) {
  _options.workers.check();
  const std::string store = _options.store.path();
  ExitCode code = kDone;
  auto roots = rootsFor(operands, store, console, &code);
  if (!roots) return code;
  int failure = 0;
  const auto watcher = makeFolderWatcher(&failure);
  if (watcher) return follow(store, std::move(*roots), *watcher, console);
  console.diagnostics.failure("inotify", posixError(failure)->localizedFailureReason());
  return kBroken;
}

ExitCode WatchCommand::follow(const std::string& store, std::vector<std::string> roots,
                              FolderWatcher& watcher, Console& console) const {
  const Interruption noted;
  WatchReport report(console, wishesFor(_options.hasEvents, _options.isQuiet));
  ImportSettings imports;
  _options.workers.applyTo(imports, console.diagnostics);
  // The writer may be somebody else for a while, even at the start: the index waits for its turn.
  StoreIndex index(store, roots, imports, report);
  WatchLoop loop(watcher, index, report, std::move(roots));
  loop.begin();
  while (!Interruption::isWished()) {
    if (!loop.step()) return kStoreFailed;
    if (!console.output.flush()) return kBroken;
  }
  Interruption::forget();
  return kDone;
}

}  // namespace

std::unique_ptr<Command> makeWatchCommand() { return std::make_unique<WatchCommand>(); }

}  // namespace kbx
