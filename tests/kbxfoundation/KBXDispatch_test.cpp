#include "KBXDispatch.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "KBXException.h"
#include "platform/threads/DispatchSemaphore.h"
#include "platform/threads/NSThread.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingMainRunLoop.h"
#include "tests/support/ServingMainThread.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr int kThreads = 8;

bool isMainThread() { return NSThread::currentThread()->isMainThread(); }
Ref<NSException> anException() {
  return KBXException::exceptionWithName("A"_ns, "reason"_ns, nullptr);
}

// ---- Tries ---------------------------------------------------------------------------------

/// A block that succeeds at its nth call, and counts them.
struct SucceedsAt {
  std::uint64_t when;
  std::uint64_t* calls;
  bool operator()() const { return ++*calls == when; }
};

TEST(KBXPerformBlockWithTries, TheNumberOfTheSuccessfulAttemptIsAnswered) {
  struct Case {
    const char* rule;
    std::uint64_t tries, succeedsAt, answer, calls;
  };
  for (auto [rule, tries, succeedsAt, answer, calls] :
       {Case{"the second of three", 3, 2, 2, 2}, Case{"the first", 3, 1, 1, 1},
        Case{"the last counts", 3, 3, 3, 3}, Case{"none of three", 3, 4, 0, 3},
        Case{"no tries, no call", 0, 1, 0, 0}, Case{"one try", 1, 1, 1, 1},
        Case{"one failure", 1, 2, 0, 1},
        Case{"any number", std::numeric_limits<std::uint64_t>::max(), 2, 2, 2}}) {
    SCOPED_TRACE(rule);
    std::uint64_t called = 0;
    EXPECT_EQ(KBXPerformBlockWithTries(tries, SucceedsAt{succeedsAt, &called}), answer);
    EXPECT_EQ(called, calls);
  }
}

TEST(KBXPerformBlockWithTries, WithoutABlockTheAnswerIsZero) {
  EXPECT_EQ(KBXPerformBlockWithTries(3, nullptr), 0U);
}

TEST(KBXPerformBlockWithTries, AnExceptionEndsTheAttempts) {
  auto exception = anException();
  int calls = 0;
  auto raising = [&]() -> bool {
    ++calls;
    exception->raise();
  };
  EXPECT_TRUE(isSame(raisedBy([&] { KBXPerformBlockWithTries(3, raising); }), exception));
  EXPECT_EQ(calls, 1);
}

// ---- On the main thread, without waiting ---------------------------------------------------

TEST(KBXPerformBlockOnMainThread, TheBlockIsQueuedForTheCommonModesAndTheLoopNotWoken) {
  RecordingMainRunLoop loop;
  bool hasRun = false;
  KBXPerformBlockOnMainThread([&] { hasRun = true; });
  ASSERT_EQ(loop.queued.size(), 1U);
  EXPECT_EQ(loop.queued[0].mode, "kCFRunLoopCommonModes");
  EXPECT_EQ(loop.wakeUps, 0);
  EXPECT_FALSE(hasRun);
  loop.queued[0].block();
  EXPECT_TRUE(hasRun);
}

TEST(KBXPerformBlockOnMainThread, ReturnsBeforeItsBlockRunsWhichIsLaterOnTheMainThread) {
  bool hasRun = false;
  auto queueBlock = [&] { KBXPerformBlockOnMainThread([&] { hasRun = isMainThread(); }); };
  for (bool isFromMainThread : {true, false}) {
    SCOPED_TRACE(isFromMainThread);
    hasRun = false;
    if (isFromMainThread)
      queueBlock();
    else
      std::thread(queueBlock).join();  // though the main thread waits for it
    EXPECT_FALSE(hasRun);
    runMainThreadOnce();
    EXPECT_TRUE(hasRun);
  }
}

TEST(KBXPerformBlockOnMainThread, AnExceptionThatComesLaterGoesNowhere) {
  auto exception = anException();
  bool hasRunTheNext = false;
  EXPECT_FALSE(raisedBy([&] { KBXPerformBlockOnMainThread([exception] { exception->raise(); }); }));
  KBXPerformBlockOnMainThread([&] { hasRunTheNext = true; });
  EXPECT_FALSE(raisedBy(runMainThreadOnce));
  EXPECT_TRUE(hasRunTheNext);
}

TEST(KBXPerformBlockOnMainThread, AnExceptionThatIsThereAlreadyIsRaisedOnTheCallingThread) {
  RecordingMainRunLoop loop;
  loop.runsAtOnce = true;
  auto exception = anException();
  EXPECT_TRUE(isSame(raisedBy([&] { KBXPerformBlockOnMainThread([&] { exception->raise(); }); }),
                     exception));
}

TEST(KBXPerformBlockOnMainThread, AnyOtherExceptionLeavesWhoeverRunsTheLoop) {
  KBXPerformBlockOnMainThread([] { throw std::runtime_error("foreign"); });
  EXPECT_THROW(runMainThreadOnce(), std::runtime_error);
}

/// A main thread that runs each block beside whoever queues it.
class RunLoopBesideTheCaller final : public MainRunLoop {
 public:
  void performBlock(NSString*, dispatch_block_t block) override {
    _threads.emplace_back(std::move(block));
  }
  void wakeUp() override {}
  void stop() override {}
  void addCommonMode(NSString*) override {}
  CFRunLoopRunResult runInMode(NSString*, double, bool) override { return kCFRunLoopRunFinished; }

 private:
  std::vector<std::jthread> _threads;
  ScopedService<MainRunLoop> _installed{*this};
};

TEST(KBXPerformBlockOnMainThread, TheCallerMayLookWhileTheBlockRaises) {
  RunLoopBesideTheCaller loop;
  auto exception = anException();
  for (int i = 0; i < 20; ++i) {
    auto raised = raisedBy([&] { KBXPerformBlockOnMainThread([=] { exception->raise(); }); });
    EXPECT_TRUE(!raised || isSame(raised, exception));
  }
}

TEST(KBXPerformBlockOnMainThread, ManyThreadsMayQueueBlocksThatRaiseWhileTheyLook) {
  constexpr int kBlocks = 200;
  int runs = 0;                // the main thread's
  std::atomic<int> raised{0};  // luck decides how many of them: all must be of the class
  serveThreads(kThreads, [&](int) {
    for (int i = 0; i < kBlocks; ++i) {
      auto queueBlock = [&] {
        KBXPerformBlockOnMainThread([&] {
          ++runs;
          anException()->raise();
        });
      };
      if (auto exception = raisedBy(queueBlock)) {
        EXPECT_EQ(text(exception->name()), "A");
        ++raised;
      }
      CFRunLoopWakeUp(CFRunLoopGetMain());
    }
  });
  runMainThreadOnce();
  EXPECT_EQ(runs, kThreads * kBlocks);
  EXPECT_LE(raised, runs);
}

// ---- In the background ---------------------------------------------------------------------

TEST(KBXDispatch, AChildThreadRunsTheBlockWhileTheCallerGoesOn) {
  std::latch callerWentOn(1), hasRun(1);
  bool wasMainThread = true;
  KBXDispatch::childThreadAsync([&] {
    callerWentOn.wait();  // the call has returned although the block has not
    wasMainThread = isMainThread();
    hasRun.count_down();
  });
  callerWentOn.count_down();
  hasRun.wait();
  EXPECT_FALSE(wasMainThread);
}

TEST(KBXDispatchDeathTest, AnExceptionOfAChildThreadsBlockEndsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  auto run = [](const dispatch_block_t& block) {
    KBXDispatch::childThreadAsync(block);
    dispatch_semaphore_wait(dispatch_semaphore_create(0), DISPATCH_TIME_FOREVER);
  };
  EXPECT_DEATH(run([] { anException()->raise(); }), "reason");
  EXPECT_DEATH(run([] { throw std::runtime_error("foreign"); }), "foreign");
}

// ---- On the main thread, with results ------------------------------------------------------

/// Each operation as a call that runs the block and has no result.
struct Operation {
  const char* selector;
  std::function<void(const dispatch_block_t&)> call;
};

std::vector<Operation> operations() {
  auto answeringObject = [](const dispatch_block_t& block) {
    return [&block]() -> Ref<NSObject> {
      block();
      return "object"_ns;
    };
  };
  auto answeringTrue = [](const dispatch_block_t& block) {
    return [&block] {
      block();
      return true;
    };
  };
  return {
      {"mainThreadSync:", [](const auto& block) { KBXDispatch::mainThreadSync(block); }},
      {"mainThreadReturnObject:",
       [=](const auto& block) { KBXDispatch::mainThreadReturnObject(answeringObject(block)); }},
      {"mainThreadReturnBool:",
       [=](const auto& block) { KBXDispatch::mainThreadReturnBool(answeringTrue(block)); }},
      {"mainThreadReturnObject:error:",
       [=](const auto& block) {
         Ref<NSError> error;
         KBXDispatch::mainThreadReturnObject(answeringObject(block), &error);
       }},
      {"mainThreadReturnBool:error:",
       [=](const auto& block) {
         Ref<NSError> error;
         KBXDispatch::mainThreadReturnBool(answeringTrue(block), &error);
       }},
  };
}

TEST(KBXDispatch, OnTheMainThreadTheBlockIsCalledDirectlyAndNothingQueued) {
  RecordingMainRunLoop loop;
  for (const auto& [selector, call] : operations()) {
    SCOPED_TRACE(selector);
    std::thread::id ranOn;
    call([&] { ranOn = std::this_thread::get_id(); });
    EXPECT_EQ(ranOn, std::this_thread::get_id());
    auto exception = anException();
    EXPECT_TRUE(
        isSame(raisedBy([&, &run = call] { run([&] { exception->raise(); }); }), exception));
    EXPECT_THROW(call([] { throw std::runtime_error("foreign"); }), std::runtime_error);
  }
  EXPECT_TRUE(loop.queued.empty());
  EXPECT_EQ(loop.wakeUps, 0);
}

TEST(KBXDispatch, OffTheMainThreadTheBlockHasRunThereWhenTheCallReturns) {
  for (const auto& [selector, call] : operations()) {
    SCOPED_TRACE(selector);
    bool hasRun = false;
    serveThread([&, &run = call] {
      run([&] { hasRun = isMainThread(); });
      EXPECT_TRUE(hasRun);
    });
  }
}

TEST(KBXDispatch, AnExceptionOfTheBlockIsRaisedAgainOnTheCallingThread) {
  for (const auto& [selector, call] : operations()) {
    SCOPED_TRACE(selector);
    auto exception = anException();
    serveThread([&, &run = call] {
      EXPECT_TRUE(isSame(raisedBy([&] { run([&] { exception->raise(); }); }), exception));
    });
  }
}

TEST(KBXDispatch, AnyOtherExceptionOfTheBlockPassesToTheCallingThread) {
  for (const auto& [selector, call] : operations()) {
    SCOPED_TRACE(selector);
    serveThread([&run = call] {
      EXPECT_THROW(run([] { throw std::runtime_error("foreign"); }), std::runtime_error);
    });
  }
}

TEST(KBXDispatch, TheResultOfTheBlockComesBack) {
  auto checkResults = [] {
    auto object = NSMutableDictionary::dictionary();
    EXPECT_TRUE(
        isSame(KBXDispatch::mainThreadReturnObject([&] { return Ref<NSObject>(object); }), object));
    EXPECT_FALSE(KBXDispatch::mainThreadReturnObject([] { return nullptr; }));
    EXPECT_TRUE(KBXDispatch::mainThreadReturnBool([] { return true; }));
    EXPECT_FALSE(KBXDispatch::mainThreadReturnBool([] { return false; }));
  };
  checkResults();
  serveThread(checkResults);
}

TEST(KBXDispatch, AnObjectThatTheBlockMadeBelongsToTheCallingThread) {
  serveThread([] {
    auto made = KBXDispatch::mainThreadReturnObject(
        [] { return NSException::exceptionWithName("made"_ns, nullptr, nullptr); });
    auto* exception = cast<NSException>(made);
    ASSERT_TRUE(exception);
    EXPECT_EQ(text(exception->name()), "made");
  });
}

TEST(KBXDispatch, AnErrorThatTheBlockStoresIsUsableWhenTheBlockHasGone) {
  auto checkErrors = [] {
    Ref<NSError> error;
    auto failing = [&error] {
      error = NSError::errorWithDomain("D"_ns, 7, nullptr);
      return false;
    };
    EXPECT_FALSE(KBXDispatch::mainThreadReturnBool(failing, &error));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 7);
    EXPECT_EQ(text(error->domain()), "D");
    error = nullptr;
    auto answeringNothing = [&failing]() -> Ref<NSObject> {
      failing();
      return nullptr;
    };
    EXPECT_FALSE(KBXDispatch::mainThreadReturnObject(answeringNothing, &error));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 7);
  };
  checkErrors();
  serveThread(checkErrors);
}

TEST(KBXDispatch, TheErrorIsTheBlocksOwnMatter) {
  auto check = [] {
    auto before = NSError::errorWithDomain("D"_ns, 1, nullptr);
    Ref<NSError> error = before;
    EXPECT_FALSE(KBXDispatch::mainThreadReturnBool([] { return false; }, &error));
    EXPECT_FALSE(KBXDispatch::mainThreadReturnObject([] { return nullptr; }, &error));
    EXPECT_TRUE(KBXDispatch::mainThreadReturnBool([] { return true; }, &error));
    EXPECT_TRUE(isSame(error, before)) << "it is neither set nor cleared here";
    EXPECT_FALSE(KBXDispatch::mainThreadReturnBool([] { return false; }, nullptr));
    EXPECT_FALSE(KBXDispatch::mainThreadReturnObject([] { return nullptr; }, nullptr));
    EXPECT_TRUE(KBXDispatch::mainThreadReturnObject([] { return "a"_ns; }, nullptr));
  };
  check();
  serveThread(check);
}

TEST(KBXDispatch, AnExceptionComesBeforeTheErrorAndTheResult) {
  auto exception = anException();
  serveThread([&] {
    Ref<NSError> error;
    bool result = true;
    auto raised = raisedBy([&] {
      result = KBXDispatch::mainThreadReturnBool(
          [&]() -> bool {
            error = NSError::errorWithDomain("D"_ns, 7, nullptr);
            exception->raise();
          },
          &error);
    });
    EXPECT_TRUE(isSame(raised, exception));
    EXPECT_TRUE(result) << "there is no result";
    EXPECT_TRUE(error);
  });
}

TEST(KBXDispatch, ManyThreadsGetTheirOwnResultsErrorsAndExceptions) {
  constexpr int kCalls = 100;
  int calls = 0;  // the main thread's
  std::atomic<int> wrong{0};
  serveThreads(kThreads, [&](int thread) {
    for (int i = 0; i < kCalls; ++i) {
      const std::int64_t code = thread * 1000 + i;
      Ref<NSError> error;
      const bool result = KBXDispatch::mainThreadReturnBool(
          [&] {
            ++calls;
            error = NSError::errorWithDomain("D"_ns, code, nullptr);
            return false;
          },
          &error);
      if (result || !error || error->code() != code) ++wrong;
      auto exception = anException();
      auto raise = [&]() -> Ref<NSObject> {
        ++calls;
        exception->raise();
      };
      if (!isSame(raisedBy([&] { KBXDispatch::mainThreadReturnObject(raise); }), exception))
        ++wrong;
    }
  });
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(calls, 2 * kThreads * kCalls);
}

}  // namespace
}  // namespace kbx
