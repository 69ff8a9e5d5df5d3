#include "platform/threads/DispatchQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <cstdlib>
#include <latch>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/threads/DispatchSemaphore.h"
#include "platform/threads/NSThread.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/ServingMainThread.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr int kThreads = 8;

dispatch_queue_t mainQueue() { return dispatch_get_main_queue(); }
dispatch_queue_t globalQueue() {
  return dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0);
}
bool isMainThread() { return NSThread::currentThread()->isMainThread(); }

TEST(DispatchQueue, EachQueueIsOneObject) {
  EXPECT_TRUE(mainQueue() && isSame(mainQueue(), dispatch_get_main_queue()));
  EXPECT_TRUE(globalQueue() && isSame(globalQueue(), dispatch_get_global_queue(0, 0)));
  EXPECT_FALSE(isSame(mainQueue(), globalQueue()));
}

TEST(DispatchQueue, ThereIsNoGlobalQueueOfAnotherPriorityOrWithFlags) {
  EXPECT_FALSE(dispatch_get_global_queue(2, 0));
  EXPECT_FALSE(dispatch_get_global_queue(-2, 0));
  EXPECT_FALSE(dispatch_get_global_queue(0, 1));
}

TEST(DispatchQueue, AQueueAndABlockAreRequired) {
  const auto nothing = [] {};
  EXPECT_EQ(nameRaisedBy([&] { dispatch_async(nullptr, nothing); }), "NSInvalidArgumentException");
  EXPECT_EQ(nameRaisedBy([&] { dispatch_sync(nullptr, nothing); }), "NSInvalidArgumentException");
  for (auto* queue : {mainQueue(), globalQueue()}) {
    EXPECT_EQ(nameRaisedBy([&] { dispatch_async(queue, nullptr); }), "NSInvalidArgumentException");
    EXPECT_EQ(nameRaisedBy([&] { dispatch_sync(queue, nullptr); }), "NSInvalidArgumentException");
  }
}

TEST(MainQueue, ABlockWaitsForTheMainRunLoop) {
  bool hasRun = false;
  dispatch_async(mainQueue(), [&] { hasRun = true; });
  EXPECT_FALSE(hasRun);
  runMainThreadOnce();
  EXPECT_TRUE(hasRun);
}

TEST(MainQueue, BlocksOfManyThreadsRunOneByOneOnTheMainThreadEachThreadsInTheirOrder) {
  constexpr int kBlocks = 200;
  std::vector<std::pair<int, int>> seen;  // no lock: the main thread alone writes it
  int wrongThread = 0;
  serveThreads(kThreads, [&](int thread) {
    for (int i = 0; i < kBlocks; ++i)
      dispatch_async(mainQueue(), [&, thread, i] {
        seen.emplace_back(thread, i);
        if (!isMainThread()) ++wrongThread;
      });
  });
  EXPECT_EQ(wrongThread, 0);
  ASSERT_EQ(seen.size(), std::size_t{kThreads * kBlocks});
  std::vector<int> next(kThreads);
  for (auto [thread, i] : seen) EXPECT_EQ(i, next[static_cast<std::size_t>(thread)]++);
}

TEST(MainQueue, ASynchronousBlockHasRunOnTheMainThreadWhenTheCallReturns) {
  constexpr int kCalls = 200;
  int count = 0;  // no lock, as above
  std::atomic<int> wrong{0};
  serveThreads(kThreads, [&](int) {
    for (int i = 0; i < kCalls; ++i) {
      bool hasRun = false;
      dispatch_sync(mainQueue(), [&] {
        ++count;
        hasRun = isMainThread();
      });
      if (!hasRun) ++wrong;
    }
  });
  EXPECT_EQ(count, kThreads * kCalls);
  EXPECT_EQ(wrong, 0);
}

TEST(MainQueue, AnyExceptionOfASynchronousBlockReachesItsCaller) {
  std::atomic<int> caught{0};
  serveThreads(kThreads, [&](int thread) {
    for (int i = 0; i < 50; ++i) {
      try {
        dispatch_sync(mainQueue(), [&]() -> void {
          throw std::runtime_error(std::to_string(thread * 1000 + i));
        });
      } catch (const std::runtime_error& error) {
        if (error.what() == std::to_string(thread * 1000 + i)) ++caught;
      }
    }
  });
  EXPECT_EQ(caught, kThreads * 50);
}

TEST(MainQueue, ARaisedExceptionReachesTheCallerAsTheSameObject) {
  auto exception = NSException::exceptionWithName("A"_ns, nullptr, nullptr);
  serveThread([&] {
    EXPECT_TRUE(isSame(raisedBy([&] { dispatch_sync(mainQueue(), [&] { exception->raise(); }); }),
                       exception));
  });
}

TEST(MainQueue, ABlockThatQueuesItselfDoesNotKeepTheRunLoop) {
  int runs = 0;
  std::function<void()> again = [&] {
    ++runs;
    if (runs < 1000) dispatch_async(mainQueue(), again);
  };
  dispatch_async(mainQueue(), again);
  runMainThreadOnce();
  EXPECT_EQ(runs, 1);
  while (runs < 1000) runMainThreadOnce();
}

TEST(MainQueue, WhatABlockCapturesDiesBeforeTheNextBlockRuns) {
  auto captured = std::make_shared<int>(1);
  std::weak_ptr<int> seen = captured;
  bool wasGone = false;
  dispatch_async(mainQueue(), [captured = std::move(captured)] {});
  dispatch_async(mainQueue(), [&] { wasGone = seen.expired(); });
  runMainThreadOnce();
  EXPECT_TRUE(wasGone);
}

TEST(GlobalQueue, BlocksRunSideBySideOnOtherThreads) {
  std::barrier together(kThreads);
  std::latch done(kThreads);
  std::atomic<int> onMainThread{0};
  for (int i = 0; i < kThreads; ++i)
    dispatch_async(globalQueue(), [&] {
      together.arrive_and_wait();  // passes only when all are running
      if (isMainThread()) ++onMainThread;
      done.count_down();
    });
  done.wait();
  EXPECT_EQ(onMainThread, 0);
}

TEST(GlobalQueue, ASynchronousBlockRunsOnTheCallingThread) {
  std::thread::id ranOn;
  dispatch_sync(globalQueue(), [&] { ranOn = std::this_thread::get_id(); });
  EXPECT_EQ(ranOn, std::this_thread::get_id());
  EXPECT_THROW(dispatch_sync(globalQueue(), []() -> void { throw 1; }), int);
}

TEST(GlobalQueue, ABlockMayWaitForTheMainThread) {
  int answers = 0;
  serveThread([&] {
    std::latch done(kThreads);
    for (int i = 0; i < kThreads; ++i)
      dispatch_async(globalQueue(), [&] {
        dispatch_sync(mainQueue(), [&] { ++answers; });
        done.count_down();
      });
    done.wait();
  });
  EXPECT_EQ(answers, kThreads);
}

class DispatchQueueDeathTest : public testing::Test {
 protected:
  // The process is started anew, since a copy of one with threads lacks them.
  DispatchQueueDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(DispatchQueueDeathTest, TheMainThreadCannotWaitForItself) {
  EXPECT_DEATH(dispatch_sync(mainQueue(), [] {}),
               "dispatch_sync was called on the main queue by the main thread");
}

TEST_F(DispatchQueueDeathTest, AnExceptionThatNobodyWaitsForEndsTheProcess) {
  auto raise = [] { NSException::exceptionWithName("AName"_ns, "why"_ns, nullptr)->raise(); };
  auto throwIt = [] { throw std::runtime_error("foreign"); };
  auto onMainQueue = [](const dispatch_block_t& block) {
    dispatch_async(mainQueue(), block);
    runMainThreadOnce();
  };
  auto onGlobalQueue = [](const dispatch_block_t& block) {
    dispatch_async(globalQueue(), block);
    dispatch_semaphore_wait(dispatch_semaphore_create(0), DISPATCH_TIME_FOREVER);
  };
  EXPECT_DEATH(onMainQueue(throwIt), "foreign");
  EXPECT_DEATH(onMainQueue(raise), "AName");
  EXPECT_DEATH(onGlobalQueue(throwIt), "foreign");
  EXPECT_DEATH(onGlobalQueue(raise), "AName");
}

TEST_F(DispatchQueueDeathTest, ABlockThatNeverEndsDoesNotKeepTheProcess) {
  EXPECT_EXIT(
      {
        std::latch isRunning(1);
        dispatch_async(globalQueue(), [&] {
          isRunning.count_down();
          dispatch_semaphore_wait(dispatch_semaphore_create(0), DISPATCH_TIME_FOREVER);
        });
        isRunning.wait();
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace kbx
