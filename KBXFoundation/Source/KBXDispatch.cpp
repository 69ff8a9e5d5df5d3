#include "KBXDispatch.h"

#include <memory>
#include <mutex>
#include <utility>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/threads/NSRunLoop.h"
#include "platform/threads/NSThread.h"

namespace kbx {

KBX_CLASS(KBXDispatch)

namespace {

/// An exception on its way from the block to whoever queued it. Guarded, because the one may store
/// it while the other looks.
class ExceptionSlot {
 public:
  void store(NSException* exception) {
    std::lock_guard held(_guard);
    _exception = exception;
  }
  Ref<NSException> take() {
    std::lock_guard held(_guard);
    return std::exchange(_exception, nullptr);
  }

 private:
  std::mutex _guard;
  Ref<NSException> _exception;
};

/// Runs the block on the main thread and waits. The caller alone reads what is captured here, after
/// the queue has told that the block is done.
void performOnMainThread(const dispatch_block_t& block) {
  if (NSThread::currentThread()->isMainThread()) return block();
  Ref<NSException> exception;
  dispatch_sync(dispatch_get_main_queue(), [&] {
    try {
      block();
    } catch (const Raised& raised) {
      exception = raised.exception();
    }
  });
  if (exception) exception->raise();
}

template <class Result>
Result resultFromMainThread(const std::function<Result()>& block) {
  Result result{};
  performOnMainThread([&] { result = block(); });
  return result;
}

}  // namespace

std::uint64_t KBXPerformBlockWithTries(std::uint64_t tries, const std::function<bool()>& block) {
  if (!block) return 0;
  for (std::uint64_t failures = 0; failures < tries; ++failures)
    if (block()) return failures + 1;
  return 0;
}

void KBXPerformBlockOnMainThread(dispatch_block_t block) {
  auto slot = std::make_shared<ExceptionSlot>();
  CFRunLoopPerformBlock(NSRunLoop::mainRunLoop()->getCFRunLoop(), kCFRunLoopCommonModes(),
                        [slot, block = std::move(block)] {
                          try {
                            block();
                          } catch (const Raised& raised) {
                            slot->store(raised.exception());
                          }
                        });
  // Not waited for: as a rule the slot is still empty, and stays unread.
  if (auto exception = slot->take()) exception->raise();
}

void KBXDispatch::childThreadAsync(dispatch_block_t block) {
  dispatch_async(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0), std::move(block));
}

void KBXDispatch::mainThreadSync(const dispatch_block_t& block) { performOnMainThread(block); }

Ref<NSObject> KBXDispatch::mainThreadReturnObject(const std::function<Ref<NSObject>()>& block) {
  return resultFromMainThread(block);
}

bool KBXDispatch::mainThreadReturnBool(const std::function<bool()>& block) {
  return resultFromMainThread(block);
}

bool KBXDispatch::mainThreadReturnBool(const std::function<bool()>& block, Ref<NSError>*) {
  return resultFromMainThread(block);
}

Ref<NSObject> KBXDispatch::mainThreadReturnObject(const std::function<Ref<NSObject>()>& block,
                                                  Ref<NSError>*) {
  return resultFromMainThread(block);
}

}  // namespace kbx
