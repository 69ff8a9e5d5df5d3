// MainQueue: the blocks that wait for the main thread.
#pragma once

#include <deque>
#include <mutex>

#include "platform/threads/DispatchQueue.h"

namespace kbx {

/// The queue behind dispatch_get_main_queue(). Wakes the main run loop for each block.
class MainQueue final : public DispatchQueue {
 public:
  static MainQueue& shared();

  void async(dispatch_block_t block) override;
  void sync(const dispatch_block_t& block) override;

  /// Whether drain() would find a block. Any thread.
  bool hasBlocks();

  // On the main thread only:

  /// Runs the blocks that are waiting now. Those that come meanwhile wait for the next time, so
  /// that a block that queues another one does not keep the run loop for ever. Whether there were
  /// any.
  bool drain();
  /// Whether one of its blocks is running. The queue runs one at a time, so a run loop inside a
  /// block must leave it alone.
  bool isDraining() const { return _isDraining; }

 private:
  std::mutex _guard;
  std::deque<dispatch_block_t> _blocks;  // under _guard
  bool _isDraining = false;              // the main thread's
};

}  // namespace kbx
