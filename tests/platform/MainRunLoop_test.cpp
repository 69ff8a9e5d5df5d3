#include "platform/threads/MainRunLoop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "platform/text/Format.h"
#include "platform/threads/NSRunLoop.h"
#include "platform/threads/NSThread.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingMainRunLoop.h"
#include "tests/support/ServingMainThread.h"

namespace kbx {
namespace {

constexpr double kLong = 1000;  // seconds; a test that needs them all has failed

NSString* defaultMode() { return kCFRunLoopDefaultMode(); }
NSString* ownMode() { return "TestMode"_ns; }  // never a common one

void perform(NSString* mode, dispatch_block_t block) {
  CFRunLoopPerformBlock(CFRunLoopGetMain(), mode, std::move(block));
}
void performInCommonModes(dispatch_block_t block) {
  perform(kCFRunLoopCommonModes(), std::move(block));
}
void stop() { CFRunLoopStop(CFRunLoopGetMain()); }
auto runOnce(NSString* mode) { return CFRunLoopRunInMode(mode, 0, false); }

TEST(NSRunLoop, TheMainThreadsLoopIsOneObjectWithOneLoop) {
  EXPECT_TRUE(isSame(NSRunLoop::mainRunLoop(), NSRunLoop::mainRunLoop()));
  EXPECT_EQ(NSRunLoop::mainRunLoop()->getCFRunLoop(), CFRunLoopGetMain());
}

TEST(MainRunLoop, ADoubleTakesItsPlace) {
  auto* const before = CFRunLoopGetMain();
  {
    RecordingMainRunLoop loop;
    EXPECT_EQ(CFRunLoopGetMain(), &loop);
    EXPECT_EQ(NSRunLoop::mainRunLoop()->getCFRunLoop(), &loop);
  }
  EXPECT_EQ(CFRunLoopGetMain(), before);
}

TEST(MainRunLoop, AQueuedBlockRunsOnTheMainThreadWhenTheLoopNextRuns) {
  bool hasRun = false;
  std::thread([&] {
    perform(defaultMode(), [&] { hasRun = NSThread::currentThread()->isMainThread(); });
  }).join();
  EXPECT_FALSE(hasRun);
  EXPECT_EQ(runOnce(defaultMode()), kCFRunLoopRunTimedOut);
  EXPECT_TRUE(hasRun);
}

TEST(MainRunLoop, BlocksRunOnceAndInTheirOrder) {
  std::string order;
  perform(defaultMode(), [&] { order += 'a'; });
  performInCommonModes([&] { order += 'b'; });
  perform(defaultMode(), [&] { order += 'c'; });
  runOnce(defaultMode());
  runOnce(defaultMode());
  EXPECT_EQ(order, "abc");
}

TEST(MainRunLoop, ABlockWaitsForItsMode) {
  std::string order;
  perform(defaultMode(), [&] { order += 'd'; });
  performInCommonModes([&] { order += 'c'; });
  perform(ownMode(), [&] { order += 'o'; });
  runOnce(ownMode());
  EXPECT_EQ(order, "o");
  runOnce(defaultMode());
  EXPECT_EQ(order, "odc");
}

TEST(MainRunLoop, AModeCanBecomeACommonOne) {
  static int number = 0;  // it is one for good, also when the test is repeated
  auto mode = stringWithFormat("TestModeMadeCommon%d"_ns, ++number);
  std::string order;
  performInCommonModes([&] { order += 'c'; });
  dispatch_async(dispatch_get_main_queue(), [&] { order += 'q'; });
  EXPECT_EQ(runOnce(mode), kCFRunLoopRunFinished);
  EXPECT_EQ(order, "");
  CFRunLoopAddCommonMode(CFRunLoopGetMain(), mode);
  CFRunLoopAddCommonMode(CFRunLoopGetMain(), nullptr);
  EXPECT_EQ(runOnce(mode), kCFRunLoopRunTimedOut);
  EXPECT_EQ(order, "cq");
}

TEST(MainRunLoop, WithoutAModeOrABlockNothingIsQueued) {
  bool hasRun = false;
  perform(nullptr, [&] { hasRun = true; });
  perform(defaultMode(), nullptr);
  runOnce(defaultMode());
  EXPECT_FALSE(hasRun);
}

TEST(MainRunLoop, ThereIsNothingToRun) {
  EXPECT_EQ(CFRunLoopRunInMode(ownMode(), kLong, false), kCFRunLoopRunFinished) << "an empty mode";
  EXPECT_EQ(CFRunLoopRunInMode(nullptr, kLong, false), kCFRunLoopRunFinished);
  EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopCommonModes(), kLong, false), kCFRunLoopRunFinished);
  std::thread([] {
    EXPECT_EQ(CFRunLoopRunInMode(defaultMode(), kLong, false), kCFRunLoopRunFinished);
    CFRunLoopRun();
  }).join();
}

TEST(MainRunLoop, AModeIsFinishedWhenItsLastBlockHasRun) {
  bool hasRun = false;
  perform(ownMode(), [&] { hasRun = true; });
  CFRunLoopWakeUp(CFRunLoopGetMain());
  EXPECT_EQ(CFRunLoopRunInMode(ownMode(), kLong, false), kCFRunLoopRunFinished);
  EXPECT_TRUE(hasRun);
}

TEST(MainRunLoop, TheTimeIsUp) {
  for (double seconds : {0.0, -1.0, 0.001, std::numeric_limits<double>::quiet_NaN()})
    EXPECT_EQ(CFRunLoopRunInMode(defaultMode(), seconds, false), kCFRunLoopRunTimedOut) << seconds;
}

TEST(MainRunLoop, QueueingABlockDoesNotWakeTheLoop) {
  runOnce(defaultMode());  // takes a wake-up that an earlier test has left
  // Queued behind the first look at the blocks, so the loop is about to sleep. If it were woken, it
  // would be stopped before its time.
  performInCommonModes([] { performInCommonModes(stop); });
  EXPECT_EQ(CFRunLoopRunInMode(defaultMode(), 0.05, false), kCFRunLoopRunTimedOut);
}

TEST(MainRunLoop, AWakeUpLetsTheLoopLook) {
  performInCommonModes([] {
    performInCommonModes(stop);
    CFRunLoopWakeUp(CFRunLoopGetMain());
  });
  EXPECT_EQ(CFRunLoopRunInMode(defaultMode(), kLong, false), kCFRunLoopRunStopped);
}

TEST(MainRunLoop, AnotherThreadWakesTheLoop) {
  for (int i = 0; i < 50; ++i) {
    performInCommonModes([] {});
    std::jthread other([] {
      performInCommonModes(stop);
      CFRunLoopWakeUp(CFRunLoopGetMain());
    });
    EXPECT_EQ(CFRunLoopRunInMode(defaultMode(), kLong, false), kCFRunLoopRunStopped);
  }
}

TEST(MainRunLoop, TheMainQueueWakesTheLoop) {
  for (int i = 0; i < 50; ++i) {
    std::jthread other([] { dispatch_async(dispatch_get_main_queue(), stop); });
    EXPECT_EQ(CFRunLoopRunInMode(defaultMode(), 1e300, false), kCFRunLoopRunStopped);
  }
}

TEST(MainRunLoop, ARunMayEndWithTheFirstBlocksOfTheMainQueue) {
  int runs = 0;
  perform(defaultMode(), [] {});
  for (int i = 0; i < 3; ++i) dispatch_async(dispatch_get_main_queue(), [&] { ++runs; });
  EXPECT_EQ(CFRunLoopRunInMode(defaultMode(), kLong, true), kCFRunLoopRunHandledSource);
  EXPECT_EQ(runs, 3);
  perform(defaultMode(), [] {});
  EXPECT_EQ(CFRunLoopRunInMode(defaultMode(), 0, true), kCFRunLoopRunTimedOut)
      << "a performed block is no source";
}

TEST(MainRunLoop, TheMainQueueWaitsForACommonMode) {
  std::string order;
  dispatch_async(dispatch_get_main_queue(), [&] { order += 'q'; });
  perform(ownMode(), [&] { order += 'o'; });
  runOnce(ownMode());
  EXPECT_EQ(order, "o");
  runOnce(defaultMode());
  EXPECT_EQ(order, "oq");
}

TEST(MainRunLoop, WhatIsQueuedByTheMainQueueRunsInTheSamePass) {
  bool hasRun = false;
  dispatch_async(dispatch_get_main_queue(), [&] { performInCommonModes([&] { hasRun = true; }); });
  runOnce(defaultMode());
  EXPECT_TRUE(hasRun);
}

TEST(MainRunLoop, AStopEndsTheInnermostRun) {
  auto inner = kCFRunLoopRunFinished;
  performInCommonModes([&] {
    performInCommonModes(stop);
    inner = CFRunLoopRunInMode(defaultMode(), kLong, false);
  });
  EXPECT_EQ(CFRunLoopRunInMode(defaultMode(), 0.001, false), kCFRunLoopRunTimedOut);
  EXPECT_EQ(inner, kCFRunLoopRunStopped);
}

TEST(MainRunLoop, AStopWhileNothingRunsIsForgotten) {
  stop();
  EXPECT_EQ(CFRunLoopRunInMode(defaultMode(), 0.001, false), kCFRunLoopRunTimedOut);
}

TEST(MainRunLoop, ARunInsideABlockRunsOtherBlocks) {
  std::string order;
  performInCommonModes([&] {
    order += '[';
    performInCommonModes([&] { order += 'i'; });
    runOnce(defaultMode());
    order += ']';
  });
  dispatch_async(dispatch_get_main_queue(), [&] { order += 'q'; });
  performInCommonModes([&] { order += 'n'; });
  runOnce(defaultMode());
  EXPECT_EQ(order, "[iq]n") << "what the outer run has taken is not the inner one's";
}

TEST(MainRunLoop, ARunInsideABlockOfTheMainQueueLeavesTheQueueAlone) {
  std::string order;
  dispatch_async(dispatch_get_main_queue(), [&] {
    dispatch_async(dispatch_get_main_queue(), [&] { order += 'q'; });
    EXPECT_EQ(CFRunLoopRunInMode(defaultMode(), kLong, false), kCFRunLoopRunFinished);
    performInCommonModes([&] { order += 'b'; });
    runOnce(defaultMode());
    order += '.';
  });
  runOnce(defaultMode());
  EXPECT_EQ(order, "b.");
  runOnce(defaultMode());
  EXPECT_EQ(order, "b.q");
}

TEST(MainRunLoop, AWakeUpThatARunInsideTookIsNotLost) {
  performInCommonModes([] {
    perform(ownMode(), [] { performInCommonModes(stop); });
    CFRunLoopWakeUp(CFRunLoopGetMain());
    runOnce(ownMode());
  });
  EXPECT_EQ(CFRunLoopRunInMode(defaultMode(), kLong, false), kCFRunLoopRunStopped);
}

TEST(MainRunLoop, AnExceptionLeavesTheRunAndTheOtherBlocksStayInTheirOrder) {
  std::string order;
  performInCommonModes([&] { order += 'a'; });
  performInCommonModes([] { throw std::runtime_error("foreign"); });
  performInCommonModes([&] {
    order += 'b';
    NSException::exceptionWithName("A"_ns, nullptr, nullptr)->raise();
  });
  performInCommonModes([&] { order += 'c'; });
  EXPECT_THROW(runOnce(defaultMode()), std::runtime_error);
  performInCommonModes([&] { order += 'd'; });
  EXPECT_EQ(nameRaisedBy([] { runOnce(defaultMode()); }), "A");
  EXPECT_EQ(runOnce(defaultMode()), kCFRunLoopRunTimedOut);
  EXPECT_EQ(order, "abcd");
}

TEST(MainRunLoop, ABlockThatQueuesItselfDoesNotKeepTheLoop) {
  int runs = 0;
  std::function<void()> again = [&] {
    if (++runs < 100) performInCommonModes(again);
  };
  performInCommonModes(again);
  EXPECT_EQ(runOnce(defaultMode()), kCFRunLoopRunTimedOut);
  EXPECT_EQ(runs, 2) << "before the queue and behind it";
  while (runs < 100) runOnce(defaultMode());
}

TEST(MainRunLoop, WhatABlockCapturesDiesBeforeTheNextBlockRuns) {
  auto captured = std::make_shared<int>(1);
  std::weak_ptr<int> seen = captured;
  bool wasGone = false;
  performInCommonModes([captured = std::move(captured)] {});
  performInCommonModes([&] { wasGone = seen.expired(); });
  runOnce(defaultMode());
  EXPECT_TRUE(wasGone);
}

TEST(MainRunLoop, RunsUntilItIsStopped) {
  int count = 0;
  serveThreads(8, [&](int) {
    for (int i = 0; i < 100; ++i) {
      performInCommonModes([&] { ++count; });
      CFRunLoopWakeUp(CFRunLoopGetMain());
    }
  });
  runOnce(defaultMode());
  EXPECT_EQ(count, 800);
}

}  // namespace
}  // namespace kbx
