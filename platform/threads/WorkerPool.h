// WorkerPool: threads that are made on demand and run blocks.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>

#include "platform/threads/DispatchQueue.h"

namespace kbx {

/// Blocks are begun in the order in which they came. Safe from any thread.
class KBX_PLATFORM WorkerPool {
 public:
  /// threadLimit  how many threads there are at most, 1 or more
  /// idleTime     how long a thread waits for another block before it ends
  WorkerPool(std::size_t threadLimit, std::chrono::milliseconds idleTime);
  /// Waits until all blocks have run and all threads have ended. Not called by one of them.
  ~WorkerPool();
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  /// Lets a thread run the block; a new one where no other is free and the limit allows it.
  ///
  /// An exception that leaves the block ends the process. Throws std::system_error, without taking
  /// the block, when the system refuses the only thread there would be.
  void add(dispatch_block_t block);

  /// How many threads there are now.
  std::size_t threadCount();
  /// How many of them wait for a block.
  std::size_t idleThreadCount();

 private:
  void startThread();
  void work();
  bool waitForBlock(std::unique_lock<std::mutex>& held);

  const std::size_t _threadLimit;
  const std::chrono::milliseconds _idleTime;
  std::mutex _guard;  // of all below
  std::condition_variable _changed;
  std::condition_variable _ended;
  std::deque<dispatch_block_t> _blocks;
  std::size_t _threads = 0;
  std::size_t _idleThreads = 0;
  bool _isEnding = false;
};

}  // namespace kbx
