#include "platform/threads/MainQueue.h"

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <utility>

#include "platform/threads/MainRunLoop.h"
#include "platform/threads/SystemThreads.h"

namespace kbx {
namespace {

/// A block for which a thread waits. Lives on that thread's stack.
class AwaitedBlock {
 public:
  explicit AwaitedBlock(const dispatch_block_t& block) : _block(block) {}

  /// Runs the block and keeps what it throws.
  void run() noexcept {
    try {
      _block();
    } catch (...) {
      _thrown = std::current_exception();
    }
    // Told under the lock: without it the waiting thread could leave, and this object be gone.
    std::lock_guard held(_guard);
    _isDone = true;
    _done.notify_one();
  }

  /// Waits for run(), and throws what was kept.
  void wait() {
    {
      std::unique_lock held(_guard);
      _done.wait(held, [this] { return _isDone; });
    }
    if (_thrown) std::rethrow_exception(std::move(_thrown));
  }

 private:
  const dispatch_block_t& _block;
  std::exception_ptr _thrown;  // written before _isDone, read after it
  std::mutex _guard;
  std::condition_variable _done;
  bool _isDone = false;
};

/// Lets no exception out: it ends the process where it is thrown, with the stack still there for
/// whoever looks at the core.
void callOut(const dispatch_block_t& block) noexcept { block(); }

}  // namespace

MainQueue& MainQueue::shared() {
  static auto* const queue = new MainQueue;
  return *queue;
}

void MainQueue::async(dispatch_block_t block) {
  {
    std::lock_guard held(_guard);
    _blocks.push_back(std::move(block));
  }
  MainRunLoop::current().wakeUp();
}

void MainQueue::sync(const dispatch_block_t& block) {
  if (isCallingThreadMain()) {
    std::fputs("dispatch_sync was called on the main queue by the main thread\n", stderr);
    std::abort();
  }
  AwaitedBlock awaited(block);
  async([&awaited] { awaited.run(); });
  awaited.wait();
}

bool MainQueue::hasBlocks() {
  std::lock_guard held(_guard);
  return !_blocks.empty();
}

bool MainQueue::drain() {
  std::deque<dispatch_block_t> batch;
  {
    std::lock_guard held(_guard);
    batch.swap(_blocks);
  }
  if (batch.empty()) return false;
  _isDraining = true;
  for (auto& block : batch) {
    callOut(block);
    block = nullptr;  // what it captured dies before the next one runs
  }
  _isDraining = false;
  return true;
}

}  // namespace kbx
