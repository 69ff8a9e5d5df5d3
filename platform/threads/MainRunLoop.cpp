#include "platform/threads/MainRunLoop.h"

#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/objects/NSArray.h"
#include "platform/threads/CFRunLoop.h"
#include "platform/threads/MainQueue.h"

namespace kbx {
namespace {

using SteadyClock = std::chrono::steady_clock;

/// When a run ends; absent for never.
using Deadline = std::optional<SteadyClock::time_point>;

Deadline deadlineAfter(double seconds) {
  constexpr double kForever = 504911232;  // 16 years: more is no limit
  if (seconds >= kForever) return std::nullopt;
  if (!(seconds > 0)) return SteadyClock::now();  // not-a-number, too
  return SteadyClock::now() +
         std::chrono::duration_cast<SteadyClock::duration>(std::chrono::duration<double>(seconds));
}

class SystemMainRunLoop final : public MainRunLoop {
 public:
  SystemMainRunLoop() { _commonModes->addObject(kCFRunLoopDefaultMode()); }

  void performBlock(NSString* mode, dispatch_block_t block) override;
  void wakeUp() override;
  void stop() override;
  void addCommonMode(NSString* mode) override;
  CFRunLoopRunResult runInMode(NSString* mode, double seconds,
                               bool returnAfterSourceHandled) override;

 private:
  struct QueuedBlock {
    Ref<NSString> mode;
    dispatch_block_t block;
  };
  /// One call of runInMode(); another may lie inside it. Known to the loop while it lives.
  struct Run;
  /// The blocks that are being run; those that remain go back to the front of the queue.
  struct Batch;

  std::optional<CFRunLoopRunResult> pass(const Run& run);
  void performBlocks(const Run& run);
  bool drainMainQueue(const Run& run);
  void sleep(const Run& run);
  bool isStopped(const Run& run);
  bool isEmpty(const Run& run);

  // With the guard held:
  bool isCommon(NSString* mode) const { return _commonModes->containsObject(mode); }
  bool isFor(const QueuedBlock& queued, NSString* mode) const;

  std::mutex _guard;  // of all below
  std::condition_variable _changed;
  std::list<QueuedBlock> _blocks;
  const Ref<NSMutableArray> _commonModes = NSMutableArray::array();
  Run* _innermost = nullptr;
  bool _isWoken = false;
};

struct SystemMainRunLoop::Run {
  Run(SystemMainRunLoop& runLoop, NSString* runMode, double seconds, bool isOneEnough)
      : loop(runLoop),
        mode(runMode),
        deadline(deadlineAfter(seconds)),
        returnsAfterSource(isOneEnough) {
    std::lock_guard held(loop._guard);
    outer = std::exchange(loop._innermost, this);
  }
  ~Run() {
    std::lock_guard held(loop._guard);
    loop._innermost = outer;
    // The run around this one looks again: it may have been meant by a wake-up that came here.
    if (outer) loop._isWoken = true;
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  bool isTimeUp() const { return deadline && SteadyClock::now() >= *deadline; }

  SystemMainRunLoop& loop;
  const Ref<NSString> mode;
  const Deadline deadline;
  const bool returnsAfterSource;
  Run* outer;
  bool isStopped = false;  // under the loop's guard
};

struct SystemMainRunLoop::Batch {
  Batch(SystemMainRunLoop& runLoop, NSString* mode) : loop(runLoop) {
    std::lock_guard held(loop._guard);
    for (auto next = loop._blocks.begin(); next != loop._blocks.end();) {
      auto queued = next++;
      if (loop.isFor(*queued, mode)) blocks.splice(blocks.end(), loop._blocks, queued);
    }
  }
  ~Batch() {
    std::lock_guard held(loop._guard);
    loop._blocks.splice(loop._blocks.begin(), blocks);
  }
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  SystemMainRunLoop& loop;
  std::list<QueuedBlock> blocks;
};

void SystemMainRunLoop::performBlock(NSString* mode, dispatch_block_t block) {
  std::list<QueuedBlock> made;
  made.push_back({mode, std::move(block)});
  std::lock_guard held(_guard);
  _blocks.splice(_blocks.end(), made);  // and nobody is told
}

void SystemMainRunLoop::wakeUp() {
  std::lock_guard held(_guard);
  _isWoken = true;
  _changed.notify_one();
}

void SystemMainRunLoop::stop() {
  std::lock_guard held(_guard);
  if (!_innermost) return;
  _innermost->isStopped = true;
  _changed.notify_one();
}

void SystemMainRunLoop::addCommonMode(NSString* mode) {
  std::lock_guard held(_guard);
  if (!isCommon(mode)) _commonModes->addObject(mode);
}

CFRunLoopRunResult SystemMainRunLoop::runInMode(NSString* mode, double seconds,
                                                bool returnAfterSourceHandled) {
  const Run run(*this, mode, seconds, returnAfterSourceHandled);
  while (!isEmpty(run))
    if (auto result = pass(run)) return *result;
  return kCFRunLoopRunFinished;
}

/// Once around: blocks, the main queue, sleep where there was nothing in it, and again the blocks
/// that have come meanwhile.
std::optional<CFRunLoopRunResult> SystemMainRunLoop::pass(const Run& run) {
  performBlocks(run);
  bool hasHandledSource = drainMainQueue(run);
  if (!hasHandledSource) {
    sleep(run);
    hasHandledSource = drainMainQueue(run);
  }
  performBlocks(run);
  if (hasHandledSource && run.returnsAfterSource) return kCFRunLoopRunHandledSource;
  if (run.isTimeUp()) return kCFRunLoopRunTimedOut;
  if (isStopped(run)) return kCFRunLoopRunStopped;
  return std::nullopt;
}

void SystemMainRunLoop::performBlocks(const Run& run) {
  Batch batch(*this, run.mode);
  while (!batch.blocks.empty()) {
    const dispatch_block_t block = std::move(batch.blocks.front().block);
    batch.blocks.pop_front();
    block();
  }
}

bool SystemMainRunLoop::drainMainQueue(const Run& run) {
  MainQueue& queue = MainQueue::shared();
  if (queue.isDraining()) return false;
  {
    std::lock_guard held(_guard);
    if (!isCommon(run.mode)) return false;
  }
  return queue.drain();
}

void SystemMainRunLoop::sleep(const Run& run) {
  std::unique_lock held(_guard);
  const bool servesQueue = isCommon(run.mode) && !MainQueue::shared().isDraining();
  auto isAwake = [&] {
    return _isWoken || run.isStopped || (servesQueue && MainQueue::shared().hasBlocks());
  };
  if (run.deadline)
    _changed.wait_until(held, *run.deadline, isAwake);
  else
    _changed.wait(held, isAwake);
  _isWoken = false;
}

bool SystemMainRunLoop::isStopped(const Run& run) {
  std::lock_guard held(_guard);
  return run.isStopped;
}

bool SystemMainRunLoop::isEmpty(const Run& run) {
  std::lock_guard held(_guard);
  if (isCommon(run.mode) && !MainQueue::shared().isDraining()) return false;
  for (const auto& queued : _blocks)
    if (isFor(queued, run.mode)) return false;
  return true;
}

bool SystemMainRunLoop::isFor(const QueuedBlock& queued, NSString* mode) const {
  return isEqual(queued.mode, mode) ||
         (isEqual(queued.mode, kCFRunLoopCommonModes()) && isCommon(mode));
}

}  // namespace

MainRunLoop::~MainRunLoop() = default;

KBX_SERVICE(MainRunLoop, SystemMainRunLoop)

}  // namespace kbx
