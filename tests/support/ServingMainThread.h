// A test's own thread as the main thread that others call.
#pragma once

#include <functional>
#include <latch>
#include <thread>
#include <vector>

#include "platform/threads/CFRunLoop.h"

namespace kbx {

/// Runs the work on so many threads that begin together, each with its number, while the calling
/// thread runs the main run loop; returns when all have ended. For the main thread, as a test's is.
inline void serveThreads(int count, const std::function<void(int)>& work) {
  std::thread others([&] {
    std::latch start(count);
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
      threads.emplace_back([&, i] {
        start.arrive_and_wait();
        work(i);
      });
    for (auto& thread : threads) thread.join();
    dispatch_async(dispatch_get_main_queue(), [] { CFRunLoopStop(CFRunLoopGetMain()); });
  });
  CFRunLoopRun();
  others.join();
}

/// The same for one thread.
inline void serveThread(const std::function<void()>& work) {
  serveThreads(1, [&](int) { work(); });
}

/// Runs what waits for the main thread, and returns.
inline void runMainThreadOnce() { CFRunLoopRunInMode(kCFRunLoopDefaultMode(), 0, false); }

}  // namespace kbx
