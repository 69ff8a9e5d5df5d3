// IndexPlan: what is to be done about the folders of a run, before anything is done.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/index/Comparison.h"
#include "host/index/GoneFiles.h"
#include "host/index/IndexEvents.h"

namespace kbx {

/// Everything must have been compared before anything is done: only then is it known what has gone,
/// and so may have been moved instead of being new.
class IndexPlan {
 public:
  /// retriesFailures  files that gave no message count as changed
  /// mostKept         how much there may be to do for it to be remembered; for more the folders are
  ///                  compared once more while it is done, so that memory stays bounded
  /// kind             of what the roots are
  IndexPlan(bool retriesFailures, std::size_t mostKept,
            FolderWalk::Root kind = FolderWalk::Root::Named)
      : _retriesFailures(retriesFailures), _mostKept(mostKept), _kind(kind) {}

  /// Compares the folders with the store. False when the store cannot be read.
  ///
  /// roots  as outermost() gives them
  ///
  /// Tells the listener what cannot be read. Ends early when Interruption::isWished(); what it
  /// answers then is to be thrown away.
  bool make(Database& store, const std::vector<std::string>& roots, IndexListener& listener,
            Ref<NSError>* error);

  /// What there is to do something about, one after the other; what has gone is not among it.
  /// Absent after the last one and on failure.
  std::optional<Difference> next(Ref<NSError>* error);

  GoneFiles& gone() noexcept { return _gone; }
  /// Learns that a file is where it was, whatever number its device has now.
  void noteSameFile(const FileState& before, const FileState& now) {
    _renumbered.emplace(before.device, now.device);
  }
  /// Whether a file that has gone had another place on a volume that is not there now: then it may
  /// come back. Answers the folder in which the volume is missed.
  std::optional<std::string> missingVolume(const KnownFile& file) const;

  /// How many are new or changed, or may be.
  std::uint64_t pending() const noexcept { return _pending; }
  std::uint64_t unchanged() const noexcept { return _unchanged; }
  std::uint64_t stillFailed() const noexcept { return _stillFailed; }
  bool hasTroubles() const noexcept { return _troubles != 0; }
  /// Whether nothing at all could be read.
  bool isFutile() const noexcept { return _futileRoots == _roots.size(); }

 private:
  bool compareRoot(const std::string& root, IndexListener& listener, Ref<NSError>* error);
  void take(Difference difference, IndexListener& listener);
  bool isWork(const Difference& difference) const;
  void keep(Difference difference);
  std::optional<Difference> nextOfAll(Ref<NSError>* error);

  const bool _retriesFailures;
  const std::size_t _mostKept;
  const FolderWalk::Root _kind;
  Database* _store = nullptr;
  std::vector<std::string> _roots;
  GoneFiles _gone;
  std::set<std::pair<std::uint64_t, std::uint64_t>> _renumbered;  // devices, before and now

  // What is to be done, unless it is too much to be kept.
  std::vector<Difference> _work;
  bool _isKept = true;
  std::size_t _position = 0;  // in the work, or in the roots
  std::optional<Comparison> _again;

  std::uint64_t _pending = 0;
  std::uint64_t _unchanged = 0;
  std::uint64_t _stillFailed = 0;
  std::uint64_t _troubles = 0;
  std::size_t _futileRoots = 0;
};

}  // namespace kbx
