#include "KBXSemaphore.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <functional>
#include <latch>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "KBXException.h"
#include "platform/objects/NSNumber.h"
#include "platform/preferences/NSUserDefaults.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryPreferences.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using Lines = std::vector<std::string>;

constexpr int kThreads = 8;
const char* const kFailure = "Assertion Failed: _semaphore";

/// A name that no other test has used: what is registered stays.
Ref<NSString> newName() {
  static int number = 0;
  return stringWithFormat("KBXTestSemaphore%d"_ns, ++number);
}

/// The base reason of the assertion that a call fails; "" when it fails none.
std::string failureOf(const std::function<void()>& call) {
  RecordingLog log;
  auto raised = raisedBy(call);
  auto* exception = cast<KBXException>(raised);
  if (!exception) return "";
  EXPECT_EQ(text(exception->name()), "KBXAssertionFailedException");
  return text(exception->kbxReason());
}

/// The most threads that are inside the semaphore at once while eight want to be. So many as are
/// expected meet inside: with fewer units this never ends.
int mostInside(KBXSemaphore* semaphore, int expected) {
  std::barrier meeting(expected);
  // Taken one by one, so that the last ones are on different threads. Everybody meets somebody.
  std::atomic<int> remaining{48 * expected};
  std::atomic<int> inside{0}, most{0};
  auto meet = [&] {
    const int now = ++inside;
    for (int seen = most; now > seen && !most.compare_exchange_weak(seen, now);) {
    }
    meeting.arrive_and_wait();
    --inside;
  };
  std::vector<std::jthread> threads;
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back([&] {
      while (remaining-- > 0) semaphore->performBlockAndWait(meet);
    });
  threads.clear();
  return most;
}

TEST(KBXSemaphore, AUnitThatIsTakenIsMissingUntilItIsGiven) {
  auto semaphore = KBXSemaphore::initWithCount(1);
  semaphore->wait();
  std::atomic<bool> isGiven{false};
  bool cameAfter = false;
  std::jthread other([&] {
    semaphore->wait();
    cameAfter = isGiven;
  });
  isGiven = true;
  semaphore->signal();
  other.join();
  EXPECT_TRUE(cameAfter);
}

TEST(KBXSemaphore, AsManyThreadsAreInsideAsTheCountSays) {
  for (int count : {1, 2, 4, 8}) {
    SCOPED_TRACE(count);
    EXPECT_EQ(mostInside(KBXSemaphore::initWithCount(count), count), count);
  }
}

TEST(KBXSemaphore, ACountOfZeroLetsNobodyPassBeforeASignal) {
  auto semaphore = KBXSemaphore::initWithCount(0);
  ASSERT_TRUE(semaphore);
  std::atomic<bool> isGiven{false};
  bool cameAfter = false;
  std::jthread other([&] { semaphore->performBlockAndWait([&] { cameAfter = isGiven; }); });
  isGiven = true;
  semaphore->signal();
  other.join();
  EXPECT_TRUE(cameAfter);
}

TEST(KBXSemaphore, ANegativeCountFailsAnAssertionThatTellsItsPlace) {
  for (std::int64_t count : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
    RecordingLog log;
    auto raised = raisedBy([&] { KBXSemaphore::initWithCount(count); });
    auto* exception = cast<KBXException>(raised);
    ASSERT_TRUE(exception);
    const std::string place = "KBXSemaphore:11 -initWithCount:";
    EXPECT_EQ(text(exception->name()), "KBXAssertionFailedException");
    EXPECT_EQ(text(exception->kbxReason()), kFailure);
    EXPECT_EQ(text(exception->reason()), std::string(kFailure) + " at " + place);
    EXPECT_EQ(log.lines(), Lines{place + ": Assertion Failed: " + kFailure});
  }
}

TEST(KBXSemaphore, TheBlockRunsOnTheCallingThread) {
  std::thread::id ranOn;
  KBXSemaphore::initWithCount(1)->performBlockAndWait([&] { ranOn = std::this_thread::get_id(); });
  EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST(KBXSemaphore, ABlockThatRaisesGivesItsUnitBackAndTheExceptionPassesUnchanged) {
  auto semaphore = KBXSemaphore::initWithCount(1);
  auto exception = NSException::exceptionWithName("A"_ns, "reason"_ns, nullptr);
  RecordingLog log;
  for (int i = 0; i < 3; ++i) {  // the second one would wait for ever without the unit
    EXPECT_TRUE(isSame(
        raisedBy([&] { semaphore->performBlockAndWait([&] { exception->raise(); }); }), exception));
    EXPECT_THROW(semaphore->performBlockAndWait([] { throw std::runtime_error("foreign"); }),
                 std::runtime_error);
  }
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(mostInside(semaphore, 1), 1) << "and it was given back once only";
}

TEST(KBXSemaphore, TheBlockMayLetGoOfTheSemaphore) {
  auto semaphore = KBXSemaphore::initWithCount(1);
  semaphore->performBlockAndWait([&] { semaphore = nullptr; });
  EXPECT_FALSE(semaphore);
}

// ---- By name -------------------------------------------------------------------------------

TEST(KBXSemaphoreForName, TheSameNameIsTheSameObjectAndTheFirstCountWins) {
  TemporaryPreferences preferences;
  auto name = newName();
  auto first = KBXSemaphore::semaphoreForName(name, 2);
  ASSERT_TRUE(first);
  EXPECT_TRUE(isSame(KBXSemaphore::semaphoreForName(name, 5), first));
  EXPECT_TRUE(isSame(KBXSemaphore::semaphoreForName(name, -1), first)) << "no longer looked at";
  EXPECT_EQ(mostInside(first, 2), 2);
  EXPECT_FALSE(isSame(KBXSemaphore::semaphoreForName(newName(), 2), first));
}

TEST(KBXSemaphoreForName, TheUserDefaultOfThatNameIsTheCount) {
  TemporaryPreferences preferences;
  auto name = newName();
  NSUserDefaults::standardUserDefaults()->setIntegerForKey(2, name);
  EXPECT_EQ(mostInside(KBXSemaphore::semaphoreForName(name, 8), 2), 2);
}

TEST(KBXSemaphoreForName, AThirdBlockWaitsUntilOneOfTwoReturns) {
  TemporaryPreferences preferences;
  auto name = newName();
  NSUserDefaults::standardUserDefaults()->setIntegerForKey(2, name);
  auto semaphore = KBXSemaphore::semaphoreForName(name, 8);
  std::latch bothInside(2), mayReturn(1);
  std::atomic<int> returning{0};
  auto holding = [&] {
    semaphore->performBlockAndWait([&] {
      bothInside.count_down();
      mayReturn.wait();
      ++returning;
    });
  };
  std::jthread first(holding), second(holding);
  bothInside.wait();
  int returned = 0;
  std::jthread third([&] { semaphore->performBlockAndWait([&] { returned = returning; }); });
  mayReturn.count_down();
  third.join();
  EXPECT_GE(returned, 1);
}

TEST(KBXSemaphoreForName, TheCountIsReadOncePerNameAndProcess) {
  TemporaryPreferences preferences;
  auto* defaults = NSUserDefaults::standardUserDefaults();
  auto name = newName();
  defaults->setIntegerForKey(3, name);
  auto semaphore = KBXSemaphore::semaphoreForName(name, 8);
  for (std::int64_t later : {1, 0, -1}) {
    defaults->setIntegerForKey(later, name);
    EXPECT_TRUE(isSame(KBXSemaphore::semaphoreForName(name, 8), semaphore));
  }
  defaults->removeObjectForKey(name);
  EXPECT_TRUE(isSame(KBXSemaphore::semaphoreForName(name, 8), semaphore));
  EXPECT_EQ(mostInside(semaphore, 3), 3);
}

TEST(KBXSemaphoreForName, ATextIsReadAsItsNumber) {
  TemporaryPreferences preferences;
  auto name = newName();
  NSUserDefaults::standardUserDefaults()->setObjectForKey("4 at once"_ns, name);
  EXPECT_EQ(mostInside(KBXSemaphore::semaphoreForName(name, 8), 4), 4);
}

TEST(KBXSemaphoreForName, ANegativeCountFailsAtFirstUseAndRegistersNothing) {
  TemporaryPreferences preferences;
  auto* defaults = NSUserDefaults::standardUserDefaults();
  auto name = newName();
  EXPECT_EQ(failureOf([&] { KBXSemaphore::semaphoreForName(name, -1); }), kFailure);
  defaults->setIntegerForKey(-2, name);
  EXPECT_EQ(failureOf([&] { KBXSemaphore::semaphoreForName(name, 8); }), kFailure);
  EXPECT_EQ(failureOf([&] { KBXSemaphore::semaphoreForName(name, 8); }), kFailure);
  defaults->setIntegerForKey(2, name);
  EXPECT_EQ(mostInside(KBXSemaphore::semaphoreForName(name, 8), 2), 2) << "the name was still free";
}

TEST(KBXSemaphoreForName, ACountOfZeroHoldsUpEveryUserOfTheName) {
  TemporaryPreferences preferences;
  auto name = newName();
  NSUserDefaults::standardUserDefaults()->setIntegerForKey(0, name);
  auto semaphore = KBXSemaphore::semaphoreForName(name, 8);
  ASSERT_TRUE(semaphore);
  std::atomic<bool> isGiven{false};
  bool cameAfter = false;
  std::jthread other([&] {
    KBXSemaphore::semaphoreForName(name, 8)->performBlockAndWait([&] { cameAfter = isGiven; });
  });
  isGiven = true;
  semaphore->signal();
  other.join();
  EXPECT_TRUE(cameAfter);
}

TEST(KBXSemaphoreForName, ANameIsRequired) {
  EXPECT_EQ(failureOf([] { KBXSemaphore::semaphoreForName(nullptr, 1); }),
            "Precondition Failed: key");
}

/// Preferences that let something happen while the count of a semaphore is being read.
class InterruptingPreferences final : public Preferences {
 public:
  Ref<NSDictionary> domain(NSString*) override {
    if (auto interrupt = std::exchange(whileReading, nullptr)) interrupt();
    return nullptr;
  }
  std::function<void()> whileReading;

 private:
  ScopedService<Preferences> _installed{*this};
};

TEST(KBXSemaphoreForName, TwoFirstQuestionsAtTheSameMomentGetOneEachAndTheLastMadeStays) {
  auto name = newName();
  InterruptingPreferences preferences;
  Ref<KBXSemaphore> other;
  preferences.whileReading = [&] {
    // Would never end if the registry were locked meanwhile.
    std::thread([&] { other = KBXSemaphore::semaphoreForName(name, 1); }).join();
  };
  auto mine = KBXSemaphore::semaphoreForName(name, 1);
  ASSERT_TRUE(mine && other);
  EXPECT_FALSE(isSame(mine, other));
  EXPECT_TRUE(isSame(KBXSemaphore::semaphoreForName(name, 1), mine));
  EXPECT_EQ(mostInside(other, 1), 1) << "and the other one still works";
}

TEST(KBXSemaphoreForName, ManyThreadsShareTheSemaphoresOfManyNames) {
  constexpr int kNames = 40;
  TemporaryPreferences preferences;
  std::vector<Ref<NSString>> names;
  for (int i = 0; i < kNames; ++i) names.push_back(newName());
  std::atomic<int> absent{0};
  std::barrier together(kThreads);
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i)
      threads.emplace_back([&] {
        for (const auto& name : names) {
          together.arrive_and_wait();
          auto semaphore = KBXSemaphore::semaphoreForName(name, 2);
          if (semaphore)
            semaphore->performBlockAndWait([] {});
          else
            ++absent;
        }
      });
  }
  EXPECT_EQ(absent, 0);
  for (const auto& name : names)
    EXPECT_TRUE(
        isSame(KBXSemaphore::semaphoreForName(name, 2), KBXSemaphore::semaphoreForName(name, 2)));
}

}  // namespace
}  // namespace kbx
