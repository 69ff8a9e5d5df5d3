// IndexRun: brings a store up to date with folders.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "host/index/IndexEvents.h"
#include "host/index/IndexPlan.h"
#include "host/index/StoreBatches.h"
#include "host/workers/ImportWorkers.h"
#include "platform/objects/SeededHash.h"

namespace kbx {

struct IndexSettings {
  ImportSettings imports;  // the run fills in what may be read
  BatchSize batch;
  bool retriesFailures = false;   // also of files that have not changed
  std::size_t mostKept = 10'000;  // files; so much work takes longer than comparing once more
  FolderWalk::Root roots = FolderWalk::Root::Named;
};

/// One thread, one run. What was committed stays, whatever happens to the process; the next run
/// does the rest.
class IndexRun {
 public:
  enum class End : std::uint8_t {
    Done,
    Interrupted,  // because Interruption::isWished(); what was done is committed
    Futile,       // none of the folders can be read
    NoImporter,   // or no process for it; the error says why, what was imported is committed
    StoreFailed   // the error says why; what was done since the last commit is undone
  };

  IndexRun(StoreWriter& store, const IndexSettings& settings, IndexListener& listener)
      : _settings(settings),
        _listener(listener),
        _store(store),
        _batches(store, settings.batch, [this] { _committed = _counts; }),
        _plan(settings.retriesFailures, settings.mostKept, settings.roots) {}

  /// Adds, changes and moves what is below the roots, and removes what has gone there. What cannot
  /// be read stays in the store as it is, and so does what lay on a volume that is missing.
  ///
  /// roots  paths as outermost() gives them: of folders and files, as they are to stand in the
  /// store
  End run(const std::vector<std::string>& roots, Ref<NSError>* error);

  /// Of what was committed.
  const IndexCounts& counts() const noexcept { return _committed; }
  /// Whether a file failed or something could not be read.
  bool hasTroubles() const noexcept { return _committed.failed != 0 || _hasTroubles; }

 private:
  /// A file that is being imported.
  struct Pending {
    std::string path;
    FileState state;
    std::optional<ContentHash> hash;  // if it was asked for before the import
    bool hasMessage;                  // in the store, of a former state
  };

  End work(const std::vector<std::string>& roots, Ref<NSError>* error);
  End importAll(const std::vector<std::string>& roots, Ref<NSError>* error);
  std::optional<Input> nextInput(Ref<NSError>* error);
  std::optional<Input> inputFor(const Difference& difference);
  std::optional<ContentHash> hashOf(Pending& file) const;
  bool isSettled(const Difference& difference, Pending& file);
  void touch(const Pending& file);
  void move(const KnownFile& from, const Pending& file);
  void take(const std::string& made, NSError* error);
  void takeMessage(const Pending& file, const std::string& made);
  void takeFailure(const Pending& file, NSError* error);
  End removeGone();
  void remove(const KnownFile& file);
  void keep(const std::string& path, NSError* error);

  const IndexSettings _settings;
  IndexListener& _listener;
  StoreWriter& _store;
  StoreBatches _batches;
  HashKey _key;
  IndexPlan _plan;
  std::deque<Pending> _pending;  // in the order in which their imports are taken
  IndexCounts _counts;
  IndexCounts _committed;
  Ref<NSError> _stop;  // why nothing more can be imported
  bool _hasTroubles = false;
};

}  // namespace kbx
