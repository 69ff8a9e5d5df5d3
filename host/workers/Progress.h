// Progress: memory in which workers tell what they are doing, and since when.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace kbx {

/// What one worker has in hand. It is told here, not in the stream, because results wait there
/// until there are several. A worker that is out of its mind can write anything here: then another
/// message of its batch gets the blame.
struct alignas(64) Progress {
  static constexpr std::uint64_t kNothing = UINT64_MAX;

  std::atomic<std::uint64_t> number{kNothing};  // of the input in hand
  std::atomic<std::int64_t> since{0};           // of the steady clock, in its units

  void begin(std::uint64_t input) {
    since.store(std::chrono::steady_clock::now().time_since_epoch().count());
    number.store(input);
  }
  void end() { number.store(kNothing); }
};

/// As many as there are workers, shared by this process and those that are forked from it later.
class SharedProgress {
 public:
  /// Raises std::bad_alloc.
  explicit SharedProgress(std::size_t count);
  ~SharedProgress();
  SharedProgress(const SharedProgress&) = delete;
  SharedProgress& operator=(const SharedProgress&) = delete;

  Progress& operator[](std::size_t place) const { return _places[place]; }

 private:
  Progress* _places;
  const std::size_t _count;
};

}  // namespace kbx
