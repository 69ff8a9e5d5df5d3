#include "platform/threads/DispatchSemaphore.h"

#include <limits>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"

namespace kbx {

KBX_CLASS(DispatchSemaphore)

DispatchSemaphore::~DispatchSemaphore() = default;

bool DispatchSemaphore::wait(dispatch_time_t timeout) {
  std::unique_lock held(_guard);
  if (_value <= 0 && timeout == DISPATCH_TIME_NOW) return false;
  if (--_value >= 0) return true;
  _unitGiven.wait(held, [this] { return _handOver > 0; });
  --_handOver;
  return true;
}

bool DispatchSemaphore::signal() {
  std::lock_guard held(_guard);
  if (_value == std::numeric_limits<std::intptr_t>::max())
    raiseInvalidArgument("dispatch_semaphore_signal: more units than can be counted");
  if (++_value > 0) return false;
  ++_handOver;
  // Told under the lock: the woken thread may hold the last reference.
  _unitGiven.notify_one();
  return true;
}

Ref<DispatchSemaphore> dispatch_semaphore_create(std::intptr_t value) {
  if (value < 0) return nullptr;
  return Ref<DispatchSemaphore>::adopt(new DispatchSemaphore(value));
}

std::intptr_t dispatch_semaphore_wait(dispatch_semaphore_t semaphore, dispatch_time_t timeout) {
  return semaphore->wait(timeout) ? 0 : 1;
}

std::intptr_t dispatch_semaphore_signal(dispatch_semaphore_t semaphore) {
  return semaphore->signal() ? 1 : 0;
}

}  // namespace kbx
