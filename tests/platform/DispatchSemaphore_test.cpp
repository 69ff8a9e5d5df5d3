#include "platform/threads/DispatchSemaphore.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <thread>
#include <vector>

#include "tests/support/RaisedBy.h"

namespace kbx {
namespace {

/// Takes units without waiting, and tells how many there were.
int unitsOf(DispatchSemaphore* semaphore) {
  int units = 0;
  while (dispatch_semaphore_wait(semaphore, DISPATCH_TIME_NOW) == 0) ++units;
  return units;
}

TEST(DispatchSemaphore, ANegativeCountMakesNone) {
  EXPECT_FALSE(dispatch_semaphore_create(-1));
  EXPECT_FALSE(dispatch_semaphore_create(std::numeric_limits<std::intptr_t>::min()));
}

TEST(DispatchSemaphore, ACountOfZeroIsAccepted) {
  auto semaphore = dispatch_semaphore_create(0);
  ASSERT_TRUE(semaphore);
  EXPECT_NE(dispatch_semaphore_wait(semaphore, DISPATCH_TIME_NOW), 0);
  EXPECT_EQ(dispatch_semaphore_signal(semaphore), 0);
  EXPECT_EQ(dispatch_semaphore_wait(semaphore, DISPATCH_TIME_FOREVER), 0);
}

TEST(DispatchSemaphore, AsManyUnitsAreTakenAsThereAre) {
  auto semaphore = dispatch_semaphore_create(3);
  EXPECT_EQ(unitsOf(semaphore), 3);
  dispatch_semaphore_signal(semaphore);
  dispatch_semaphore_signal(semaphore);
  EXPECT_EQ(unitsOf(semaphore), 2) << "what was not taken has not changed the count";
}

TEST(DispatchSemaphore, ASignalTellsWhetherItWokeAThread) {
  // How soon the other thread waits is not known, so main gives it more time in every round.
  bool hasWoken = false;
  for (int patience = 1; !hasWoken; patience *= 2) {
    auto semaphore = dispatch_semaphore_create(0);
    std::jthread waiting([&] { dispatch_semaphore_wait(semaphore, DISPATCH_TIME_FOREVER); });
    for (int i = 0; i < patience; ++i) std::this_thread::yield();
    hasWoken = dispatch_semaphore_signal(semaphore) != 0;
  }
}

TEST(DispatchSemaphore, EveryWaitingThreadGetsAUnitAndNoUnitIsLost) {
  constexpr int kThreads = 8, kRounds = 500;
  auto semaphore = dispatch_semaphore_create(2);
  std::atomic<int> inside{0}, tooMany{0};
  std::vector<std::jthread> threads;
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back([&] {
      for (int k = 0; k < kRounds; ++k) {
        dispatch_semaphore_wait(semaphore, DISPATCH_TIME_FOREVER);
        if (++inside > 2) ++tooMany;
        --inside;
        dispatch_semaphore_signal(semaphore);
      }
    });
  threads.clear();
  EXPECT_EQ(tooMany, 0);
  EXPECT_EQ(unitsOf(semaphore), 2);
}

TEST(DispatchSemaphore, TheLargestCountIsACount) {
  auto semaphore = dispatch_semaphore_create(std::numeric_limits<std::intptr_t>::max());
  EXPECT_EQ(nameRaisedBy([&] { dispatch_semaphore_signal(semaphore); }),
            "NSInvalidArgumentException");
  EXPECT_EQ(dispatch_semaphore_wait(semaphore, DISPATCH_TIME_NOW), 0);
  EXPECT_EQ(dispatch_semaphore_signal(semaphore), 0);
}

TEST(DispatchSemaphore, OneWithUnitsTakenMayGo) {
  auto semaphore = dispatch_semaphore_create(1);
  dispatch_semaphore_wait(semaphore, DISPATCH_TIME_NOW);
  semaphore = nullptr;
}

}  // namespace
}  // namespace kbx
