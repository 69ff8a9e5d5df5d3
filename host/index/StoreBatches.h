// StoreBatches: many changes of a store as transactions of a bounded size.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <utility>

#include "host/store/Store.h"

namespace kbx {

/// How much is done between two commits. What was committed is seen by searches and cannot be lost;
/// many small commits cost more than few large ones.
struct BatchSize {
  std::uint64_t files = 5000;
  std::uint64_t bytes = std::uint64_t{64} << 20;
  std::chrono::milliseconds time{5000};
};

/// Begins a transaction with the first change and commits when enough was done. The first failure
/// ends everything: it is kept, what was not committed is undone, and later changes are refused.
class StoreBatches {
 public:
  /// afterCommit  called when what was done so far cannot be lost any more
  StoreBatches(StoreWriter& store, const BatchSize& size, std::function<void()> afterCommit)
      : _store(store), _size(size), _afterCommit(std::move(afterCommit)) {}
  ~StoreBatches() { _store.rollback(); }
  StoreBatches(const StoreBatches&) = delete;
  StoreBatches& operator=(const StoreBatches&) = delete;

  /// Makes one change. Answers whether it was made.
  ///
  /// bytes  of the file that it is about
  /// body   bool(StoreWriter&, Ref<NSError>*)
  template <class Body>
  bool change(std::uint64_t bytes, Body body) {
    return begin() && check(body(_store, &_error)) && count(bytes);
  }
  /// Commits what was done.
  bool finish();

  bool hasChanges() const noexcept { return _hasChanges; }
  bool isGood() const noexcept { return !_error; }
  /// What failed; absent while nothing did.
  NSError* error() const noexcept { return _error; }

 private:
  using Clock = std::chrono::steady_clock;

  bool begin();
  bool check(bool isDone);
  bool count(std::uint64_t bytes);

  StoreWriter& _store;
  const BatchSize _size;
  const std::function<void()> _afterCommit;
  bool _hasBegun = false;
  bool _hasChanges = false;  // of the whole run
  std::uint64_t _files = 0;
  std::uint64_t _bytes = 0;
  Clock::time_point _start;
  Ref<NSError> _error;
};

}  // namespace kbx
