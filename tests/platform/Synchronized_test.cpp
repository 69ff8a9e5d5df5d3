#include "platform/threads/Synchronized.h"

#include <gtest/gtest.h>

#include <latch>
#include <thread>
#include <vector>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSString.h"

namespace kbx {
namespace {

constexpr int kThreads = 8;

/// Runs the block on many threads that begin together, and waits for all.
template <class Block>
void onManyThreads(Block block) {
  std::latch start(kThreads);
  std::vector<std::jthread> threads;
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back([&, i] {
      start.arrive_and_wait();
      block(i);
    });
}

TEST(Synchronized, OneThreadAtATimeHoldsTheLockOfAnObject) {
  auto list = NSMutableArray::array();
  onManyThreads([&](int) {
    for (int i = 0; i < 1000; ++i) {
      Synchronized lock(list);
      list->addObject("a"_ns);
    }
  });
  EXPECT_EQ(list->count(), 1000U * kThreads);
}

TEST(Synchronized, TheSameThreadMayTakeTheLockAgain) {
  auto list = NSMutableArray::array();
  onManyThreads([&](int) {
    for (int i = 0; i < 200; ++i) {
      Synchronized outer(list);
      list->addObject("a"_ns);
      {
        Synchronized inner(list);
        Synchronized innermost(list);
        list->addObject("b"_ns);
      }
      list->addObject("c"_ns);
    }
  });
  EXPECT_EQ(list->count(), 600U * kThreads);
  for (std::size_t i = 0; i < list->count(); i += 3)
    EXPECT_TRUE(isSame(list->objectAtIndex(i + 2), "c"_ns)) << "the inner ones end nothing";
}

TEST(Synchronized, EachObjectHasALockOfItsOwn) {
  auto mine = NSMutableArray::array(), yours = NSMutableArray::array();
  Synchronized held(mine);
  std::jthread([&] {
    Synchronized lock(yours);
    yours->addObject("a"_ns);
  }).join();
  EXPECT_EQ(yours->count(), 1U);
}

TEST(Synchronized, ManyObjectsAreLockedAtOnce) {
  std::vector<Ref<NSMutableArray>> lists;
  for (int i = 0; i < 100; ++i) lists.push_back(NSMutableArray::array());
  onManyThreads([&](int thread) {
    for (std::size_t i = 0; i < 2000; ++i) {
      auto& list = lists[(i * 7 + static_cast<std::size_t>(thread)) % lists.size()];
      Synchronized lock(list);
      list->addObject("a"_ns);
    }
  });
  std::size_t total = 0;
  for (const auto& list : lists) total += list->count();
  EXPECT_EQ(total, 2000U * kThreads);
}

TEST(Synchronized, AnAbsentObjectLocksNothing) {
  Synchronized outer(nullptr);
  std::jthread([] { Synchronized lock(nullptr); }).join();
}

TEST(Synchronized, AnExceptionLetsGoOfTheLock) {
  auto list = NSMutableArray::array();
  try {
    Synchronized lock(list);
    throw 1;
  } catch (int) {
  }
  std::jthread([&] {
    Synchronized lock(list);
    list->addObject("a"_ns);
  }).join();
  EXPECT_EQ(list->count(), 1U);
}

}  // namespace
}  // namespace kbx
