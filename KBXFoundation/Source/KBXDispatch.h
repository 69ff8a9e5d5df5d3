// KBXDispatch: blocks that run several times, on the main thread, or in the background.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/objects/NSError.h"
#include "platform/objects/NSObject.h"
#include "platform/threads/DispatchQueue.h"

namespace kbx {

/// Runs a block until it answers true: the number of that attempt, from 1; 0 when all failed.
///
/// tries  how often at most; 0 is never
/// block  absent gives 0
///
/// Nothing is waited for between attempts. An exception ends it and reaches the caller.
std::uint64_t KBXPerformBlockWithTries(std::uint64_t tries, const std::function<bool()>& block);

/// Lets the main thread run a block when its run loop next runs in a common mode, and returns at
/// once, on the main thread too.
///
/// Nothing waits and nothing wakes the run loop: a main thread that sleeps runs the block when
/// something else wakes it. An exception of the platform's class that has already left the block
/// when the queueing is done is raised again here, but as a rule the block has yet to run; what it
/// raises later goes nowhere. Any other exception leaves whoever runs the main run loop.
void KBXPerformBlockOnMainThread(dispatch_block_t block);

/// Class-level operations; there are no instances. From any thread. The blocks are required.
///
/// The mainThread… operations call the block directly on the main thread. On any other they wait
/// until the main queue has run it: for ever if nobody runs the main run loop, or if the main
/// thread waits for the caller. What the block raises or throws leaves them on the calling thread,
/// and then there is no result.
class KBXDispatch final : public NSObject {
  KBX_OBJECT(KBXDispatch, NSObject)
 public:
  KBXDispatch() = delete;

  /// Lets a background thread run the block, and returns at once. (childThreadAsync:)
  ///
  /// An exception that leaves the block, of whatever type, ends the process.
  static void childThreadAsync(dispatch_block_t block);

  /// Returns when the block has run. (mainThreadSync:)
  static void mainThreadSync(const dispatch_block_t& block);

  /// What the block answers, which may be absent. (mainThreadReturnObject:)
  static Ref<NSObject> mainThreadReturnObject(const std::function<Ref<NSObject>()>& block);
  /// What the block answers. (mainThreadReturnBool:)
  static bool mainThreadReturnBool(const std::function<bool()>& block);

  /// The same for a block that captures `error` and stores why it answers false or nothing.
  /// (mainThreadReturnBool:error:, mainThreadReturnObject:error:)
  ///
  /// error  may be absent. The handle behind it owns what the block stores, so the error outlives
  ///        whatever the main thread lets go of after the block; it is not touched here.
  static bool mainThreadReturnBool(const std::function<bool()>& block, Ref<NSError>* error);
  static Ref<NSObject> mainThreadReturnObject(const std::function<Ref<NSObject>()>& block,
                                              Ref<NSError>* error);
};

}  // namespace kbx
