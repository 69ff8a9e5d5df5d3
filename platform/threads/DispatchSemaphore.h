// Dispatch semaphores: counts of what may be taken, on which threads wait.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "platform/objects/NSObject.h"

namespace kbx {

/// How long to wait: not at all, or without limit.
enum dispatch_time_t : std::uint64_t { DISPATCH_TIME_NOW = 0, DISPATCH_TIME_FOREVER = ~0ULL };

class DispatchSemaphore;
using dispatch_semaphore_t = DispatchSemaphore*;

/// A semaphore with that many units; absent for a negative count. 0 is a count like any other: then
/// nobody gets a unit before one is given.
///
/// It may go while units are taken; other systems end the process then.
KBX_PLATFORM Ref<DispatchSemaphore> dispatch_semaphore_create(std::intptr_t value);

/// Takes a unit, waiting for one if need be. 0 when it was taken, not 0 when the time was up.
///
/// A thread that waits gets the next unit that is given, before threads that come later.
KBX_PLATFORM std::intptr_t dispatch_semaphore_wait(dispatch_semaphore_t semaphore,
                                                   dispatch_time_t timeout);

/// Gives a unit. Not 0 when a thread was woken by it.
///
/// Raises NSInvalidArgumentException when there are as many units as can be counted.
KBX_PLATFORM std::intptr_t dispatch_semaphore_signal(dispatch_semaphore_t semaphore);

/// What the functions above work with. Safe from any thread.
class KBX_PLATFORM DispatchSemaphore final : public NSObject {
  KBX_OBJECT(DispatchSemaphore, NSObject)
 public:
  /// Whether a unit was taken.
  bool wait(dispatch_time_t timeout);
  /// Whether a thread was woken.
  bool signal();

 private:
  friend Ref<DispatchSemaphore> dispatch_semaphore_create(std::intptr_t value);
  explicit DispatchSemaphore(std::intptr_t value) : _value(value) {}
  ~DispatchSemaphore() override;

  std::mutex _guard;  // of all below
  std::condition_variable _unitGiven;
  std::intptr_t _value;          // below zero: that many threads wait
  std::uintptr_t _handOver = 0;  // units given to waiting threads and not yet fetched
};

}  // namespace kbx
