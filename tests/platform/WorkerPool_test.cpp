#include "platform/threads/WorkerPool.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <barrier>
#include <cstdlib>
#include <latch>
#include <memory>
#include <system_error>
#include <thread>
#include <vector>

namespace kbx {
namespace {

using namespace std::chrono_literals;

/// Waits until a question is answered with yes.
template <class Question>
void until(Question question) {
  while (!question()) std::this_thread::yield();
}

TEST(WorkerPool, ThreadsAreMadeOnDemand) {
  std::latch go(1);
  WorkerPool pool(8, 1h);
  EXPECT_EQ(pool.threadCount(), 0U);
  for (std::size_t i = 1; i <= 3; ++i) {
    pool.add([&] { go.wait(); });
    EXPECT_EQ(pool.threadCount(), i);
  }
  go.count_down();
}

/// Lets the pool run a block: the thread that ran it, which is idle again.
std::thread::id threadOfABlock(WorkerPool& pool) {
  std::thread::id thread;
  std::latch done(1);
  pool.add([&] {
    thread = std::this_thread::get_id();
    done.count_down();
  });
  done.wait();
  until([&] { return pool.idleThreadCount() == 1; });
  return thread;
}

TEST(WorkerPool, AnIdleThreadTakesTheNextBlock) {
  WorkerPool pool(8, 1h);
  const auto first = threadOfABlock(pool);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(threadOfABlock(pool), first);
  EXPECT_EQ(pool.threadCount(), 1U);
}

TEST(WorkerPool, ABlockDoesNotCountOnAThreadThatAnotherBlockWillTake) {
  std::barrier together(2);  // passes only when both blocks run
  WorkerPool pool(8, 1h);
  threadOfABlock(pool);
  pool.add([&] { together.arrive_and_wait(); });
  pool.add([&] { together.arrive_and_wait(); });
}

TEST(WorkerPool, ThereAreNeverMoreThreadsThanTheLimitAndAllBlocksRun) {
  constexpr std::size_t kLimit = 3;
  std::atomic<int> inside{0}, most{0}, runs{0};
  {
    std::barrier together(kLimit);  // so many are inside at once
    WorkerPool pool(kLimit, 1h);
    for (int i = 0; i < 60; ++i)
      pool.add([&] {
        const int now = ++inside;
        for (int seen = most; now > seen && !most.compare_exchange_weak(seen, now);) {
        }
        together.arrive_and_wait();
        ++runs;
        --inside;
      });
    EXPECT_LE(pool.threadCount(), kLimit);
  }
  EXPECT_EQ(most, int{kLimit});
  EXPECT_EQ(runs, 60);
}

TEST(WorkerPool, BlocksAreBegunInTheirOrder) {
  std::vector<int> order;
  {
    WorkerPool pool(1, 1h);
    for (int i = 0; i < 100; ++i) pool.add([&, i] { order.push_back(i); });
  }
  for (int i = 0; i < 100; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST(WorkerPool, IdleThreadsEndAndNewOnesTakeTheirPlace) {
  WorkerPool pool(4, 0ms);
  for (int round = 0; round < 20; ++round) {
    std::latch done(4);
    for (int i = 0; i < 4; ++i) pool.add([&] { done.count_down(); });
    done.wait();
    until([&] { return pool.threadCount() == 0; });
  }
}

TEST(WorkerPool, ManyThreadsMayAddBlocks) {
  std::atomic<int> runs{0};
  {
    WorkerPool pool(4, 0ms);
    std::vector<std::jthread> threads;
    for (int i = 0; i < 8; ++i)
      threads.emplace_back([&] {
        for (int k = 0; k < 500; ++k) pool.add([&] { ++runs; });
      });
    threads.clear();
  }
  EXPECT_EQ(runs, 8 * 500);
}

TEST(WorkerPool, WhatABlockCapturesDiesWithIt) {
  WorkerPool pool(1, 1h);
  auto captured = std::make_shared<int>(1);
  std::weak_ptr<int> seen = captured;
  pool.add([captured = std::move(captured)] {});
  until([&] { return seen.expired(); });
}

TEST(WorkerPoolDeathTest, AnExceptionThatLeavesABlockEndsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        WorkerPool pool(1, 1h);
        pool.add([]() -> void { throw std::runtime_error("foreign"); });
      },
      "foreign");
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // they need the memory
TEST(WorkerPoolDeathTest, ARefusedFirstThreadIsToldAndTheBlockNotTaken) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  auto refused = [] {
    auto pool = std::make_unique<WorkerPool>(1, 1h);
    bool hasRun = false;
    rlimit limit{}, none{};
    ::getrlimit(RLIMIT_AS, &limit);
    none.rlim_max = limit.rlim_max;
    ::setrlimit(RLIMIT_AS, &none);
    bool wasTold = false;
    try {
      pool->add([&] { hasRun = true; });
    } catch (const std::system_error&) {
      wasTold = true;
    }
    ::setrlimit(RLIMIT_AS, &limit);
    pool.reset();
    return wasTold && !hasRun;
  };
  EXPECT_EXIT(std::_Exit(refused() ? 0 : 1), testing::ExitedWithCode(0), "");
}
#endif

}  // namespace
}  // namespace kbx
