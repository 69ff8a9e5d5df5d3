#include "platform/threads/WorkerPool.h"

#include <system_error>
#include <thread>
#include <utility>

namespace kbx {

WorkerPool::WorkerPool(std::size_t threadLimit, std::chrono::milliseconds idleTime)
    : _threadLimit(threadLimit), _idleTime(idleTime) {}

WorkerPool::~WorkerPool() {
  std::unique_lock held(_guard);
  _isEnding = true;
  _changed.notify_all();
  _ended.wait(held, [this] { return _threads == 0; });
}

void WorkerPool::add(dispatch_block_t block) {
  std::lock_guard held(_guard);
  // Each waiting block will take one of the idle threads.
  if (_idleThreads <= _blocks.size() && _threads < _threadLimit) startThread();
  _blocks.push_back(std::move(block));
  _changed.notify_one();
}

std::size_t WorkerPool::threadCount() {
  std::lock_guard held(_guard);
  return _threads;
}

std::size_t WorkerPool::idleThreadCount() {
  std::lock_guard held(_guard);
  return _idleThreads;
}

void WorkerPool::startThread() {
  try {
    std::thread([this] { work(); }).detach();
    ++_threads;
  } catch (const std::system_error&) {
    if (_threads == 0) throw;  // the others will get to the block
  }
}

// Lets no exception out: an uncaught one in a thread ends the process.
void WorkerPool::work() {
  std::unique_lock held(_guard);
  while (waitForBlock(held)) {
    dispatch_block_t block = std::move(_blocks.front());
    _blocks.pop_front();
    held.unlock();
    block();
    block = nullptr;  // what it captured dies without the lock
    held.lock();
  }
  --_threads;
  // Told under the lock: without it the pool could be gone.
  _ended.notify_all();
}

bool WorkerPool::waitForBlock(std::unique_lock<std::mutex>& held) {
  ++_idleThreads;
  _changed.wait_for(held, _idleTime, [this] { return !_blocks.empty() || _isEnding; });
  --_idleThreads;
  return !_blocks.empty();
}

}  // namespace kbx
