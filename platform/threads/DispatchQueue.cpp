#include "platform/threads/DispatchQueue.h"

#include <utility>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/threads/MainQueue.h"
#include "platform/threads/WorkerPool.h"

namespace kbx {

KBX_CLASS(DispatchQueue)

DispatchQueue::~DispatchQueue() = default;

namespace {

// What the system's own pool goes by, too.
constexpr std::size_t kThreadLimit = 64;
constexpr std::chrono::seconds kIdleTime{5};

class GlobalQueue final : public DispatchQueue {
 public:
  void async(dispatch_block_t block) override { _pool.add(std::move(block)); }
  void sync(const dispatch_block_t& block) override { block(); }

 private:
  WorkerPool _pool{kThreadLimit, kIdleTime};
};

void require(bool isGiven, const char* reason) {
  if (!isGiven) raiseInvalidArgument(reason);
}

}  // namespace

dispatch_queue_t dispatch_get_main_queue() { return &MainQueue::shared(); }

dispatch_queue_t dispatch_get_global_queue(std::intptr_t priority, std::uintptr_t flags) {
  // Never destroyed: its threads may be running while the process ends.
  static auto* const queue = new GlobalQueue;
  return priority == DISPATCH_QUEUE_PRIORITY_DEFAULT && flags == 0 ? queue : nullptr;
}

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
  require(queue, "dispatch_async: no queue");
  require(static_cast<bool>(block), "dispatch_async: no block");
  queue->async(std::move(block));
}

void dispatch_sync(dispatch_queue_t queue, const dispatch_block_t& block) {
  require(queue, "dispatch_sync: no queue");
  require(static_cast<bool>(block), "dispatch_sync: no block");
  queue->sync(block);
}

}  // namespace kbx
