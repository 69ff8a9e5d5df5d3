// Dispatch queues: blocks for the main thread and for threads of a pool.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/objects/NSObject.h"

namespace kbx {

/// Work without arguments and result. What it captures dies with its last copy, on whatever thread
/// that is.
using dispatch_block_t = std::function<void()>;

/// Runs blocks in the order in which they came. Safe from any thread. See the functions below.
class KBX_PLATFORM DispatchQueue : public NSObject {
  KBX_OBJECT(DispatchQueue, NSObject)
 public:
  virtual void async(dispatch_block_t block) = 0;
  virtual void sync(const dispatch_block_t& block) = 0;

 protected:
  DispatchQueue() = default;
  ~DispatchQueue() override;
};

using dispatch_queue_t = DispatchQueue*;

inline constexpr std::intptr_t DISPATCH_QUEUE_PRIORITY_DEFAULT = 0;

/// The queue of the main thread. The main run loop runs its blocks, one at a time, while it runs in
/// one of the common modes. Never freed.
KBX_PLATFORM dispatch_queue_t dispatch_get_main_queue();

/// The queue whose blocks run side by side on a pool of threads. Never freed.
///
/// Absent for any other priority than the default one and for flags that are not 0. The threads,
/// 64 at most, are made when no other is free and end when they have been idle for five seconds.
/// The process does not wait for them when it ends.
KBX_PLATFORM dispatch_queue_t dispatch_get_global_queue(std::intptr_t priority,
                                                        std::uintptr_t flags);

/// Lets the queue run the block some time, and returns at once.
///
/// queue, block  required: NSInvalidArgumentException
///
/// An exception that leaves the block, of whatever type, ends the process through std::terminate:
/// nobody is there to take it. Where the system refuses the first thread of the pool, its
/// std::system_error reaches the caller and the block is not queued.
KBX_PLATFORM void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);

/// Lets the queue run the block, and returns when it has run.
///
/// queue, block  required: NSInvalidArgumentException
///
/// An exception that leaves the block, of whatever type, leaves this call. The main queue's block
/// runs on the main thread, so the caller waits for ever if nobody runs the main run loop; on the
/// main thread itself the call could only wait for itself, and ends the process with a message. The
/// global queue's block runs on the calling thread.
KBX_PLATFORM void dispatch_sync(dispatch_queue_t queue, const dispatch_block_t& block);

}  // namespace kbx
