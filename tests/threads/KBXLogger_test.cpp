// The logger, its sites and the writer of the unified log under several threads.
#include "KBXLogger.h"

#include <gmock/gmock.h>

#include <atomic>
#include <barrier>
#include <functional>
#include <set>
#include <sstream>
#include <thread>

#include "KBXLog.h"
#include "KBXOSLogWriter.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSNumber.h"
#include "platform/threads/Synchronized.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/RecordingUnifiedLog.h"
#include "tests/support/StandardErrorCapture.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr int kThreads = 8;
constexpr LogSite kSite("KBXFoundation/Source/X", 1, "-[X name]");

/// Runs the work in eight threads, each with its number.
void inEightThreads(const std::function<void(int)>& work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
  for (auto& thread : threads) thread.join();
}

Ref<NSString> areaNumber(int number) { return stringWithFormat("Area%d"_ns, number); }

Ref<KBXLogger> loggerWith(NSString* area, bool isOn) {
  return KBXLogger::initWithDefaultsDictionary(
      NSDictionary::dictionaryWithPairs({{area, NSNumber::numberWithBool(isOn)}}));
}

TEST(KBXOSLogWriterThreads, AnAreaFirstSeenByAllThreadsAtOnceGetsOneHandle) {
  constexpr int kAreas = 50;
  RecordingUnifiedLog log;
  auto writer = KBXOSLogWriter::init();
  std::barrier together(kThreads);
  std::vector<std::vector<OSLog*>> seen(kThreads);
  inEightThreads([&](int thread) {
    for (int i = 0; i < kAreas; ++i) {
      together.arrive_and_wait();
      seen[static_cast<std::size_t>(thread)].push_back(writer->logForArea(areaNumber(i)));
    }
  });
  const auto created = log.created();
  EXPECT_EQ(created.size(), 1u + kAreas);
  EXPECT_EQ(std::set(created.begin(), created.end()).size(), created.size());
  for (const auto& handles : seen) EXPECT_EQ(handles, seen[0]);
  EXPECT_EQ(std::set(seen[0].begin(), seen[0].end()).size(), std::size_t{kAreas});
}

TEST(KBXOSLogWriterThreads, EveryEntryArrivesWholeWithItsTime) {
  constexpr int kEntries = 100, kAreas = 5;
  FakeClock clock(1714568523.456);
  ScopedService<Clock> installed(clock);
  FakeOperatingSystem system;
  ScopedService<OperatingSystem> installedSystem(system);
  RecordingUnifiedLog log;
  StandardErrorCapture captured;
  auto logger = KBXLogger::initDisposableLogger();
  inEightThreads([&](int thread) {
    for (int i = 0; i < kEntries; ++i)
      logger->logFileFormat("f", 1, "f", areaNumber(i % kAreas), "%d-%d."_ns, thread, i);
  });
  EXPECT_EQ(log.entries().size(), std::size_t{kThreads * kEntries});
  EXPECT_EQ(log.created().size(), 1u + kAreas);
  const std::string time = text(NSDateFormatter::initWithDateFormat("yyyy-MM-dd HH:mm:ss.SSS"_ns)
                                    ->stringFromDate(NSDate::date()));
  std::istringstream lines(captured.text());
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    EXPECT_EQ(line.substr(0, time.size()), time);
    EXPECT_EQ(line.back(), '.');
  }
  EXPECT_EQ(count, kThreads * kEntries);
}

TEST(KBXLoggerThreads, TheSharedLoggerMayBeReplacedWhileOthersLog) {
  FakeOperatingSystem system;
  ScopedService<OperatingSystem> installed(system);
  RecordingUnifiedLog log;
  StandardErrorCapture quiet;
  std::atomic<int> logging{kThreads};
  std::thread replacing([&] {
    const Ref<KBXLogger> loggers[] = {loggerWith("KBXThreadArea"_ns, true),
                                      loggerWith("KBXThreadArea"_ns, false), nullptr};
    for (unsigned i = 0; logging > 0; ++i) KBXLogger::setSharedLogger(loggers[i % 3]);
  });
  inEightThreads([&](int) {
    for (int i = 0; i < 200; ++i) {
      KBX_LOG_AREA("KBXThreadArea", kSite, "%d"_ns, i);
      KBX_LOG_AREA("KBXOtherArea", kSite, "%d"_ns, i);
      auto logger = KBXLogger::sharedLogger();
      if (logger->isEnabledForArea("KBXThreadArea"_ns))
        logger->logFileMessage("f", 1, "f", "KBXThreadArea"_ns, "message"_ns);
    }
    --logging;
  });
  replacing.join();
  KBXLogger::setSharedLogger(nullptr);
  // All loggers have gone, and what was made for them went with them.
  EXPECT_EQ(log.created().size(), log.released().size());
}

TEST(KBXLoggerThreads, TheLockOfTheClassKeepsTheSharedLoggerInItsPlace) {
  const Ref<KBXLogger> first = loggerWith("KBXThreadArea"_ns, false);
  const Ref<KBXLogger> second = loggerWith("KBXThreadArea"_ns, true);
  KBXLogger::setSharedLogger(first);
  std::thread other;
  std::atomic<bool> isRunning{false};
  int changes = 0;
  {
    Synchronized lock(KBXLogger::classObject());
    other = std::thread([&] {
      isRunning = true;
      KBXLogger::setSharedLogger(second);
    });
    while (!isRunning) std::this_thread::yield();
    for (int i = 0; i < 10000; ++i) changes += !isSame(KBXLogger::sharedLogger(), first);
  }
  other.join();
  EXPECT_EQ(changes, 0);
  EXPECT_TRUE(isSame(KBXLogger::sharedLogger(), second));
  KBXLogger::setSharedLogger(nullptr);
}

TEST(KBXLoggerThreads, ANewSharedLoggerIsInForceForWhoeverHearsOfIt) {
  RecordingLog log;
  const Ref<KBXLogger> off = loggerWith("KBXThreadArea"_ns, false);
  const Ref<KBXLogger> on = loggerWith("KBXThreadArea"_ns, true);
  constexpr int kRounds = 300;
  std::barrier together(2);
  std::atomic<int> wrong{0};
  std::thread other([&] {
    for (int round = 0; round < kRounds; ++round) {
      together.arrive_and_wait();  // the logger is set
      const std::size_t before = log.lines().size();
      KBX_LOG_AREA("KBXThreadArea", kSite, "x"_ns);
      if (log.lines().size() - before != (round % 2 ? 1 : 0)) ++wrong;
      together.arrive_and_wait();
    }
  });
  for (int round = 0; round < kRounds; ++round) {
    KBXLogger::setSharedLogger(round % 2 ? on : off);
    together.arrive_and_wait();
    together.arrive_and_wait();
  }
  other.join();
  EXPECT_EQ(wrong, 0);
  KBXLogger::setSharedLogger(nullptr);
}

}  // namespace
}  // namespace kbx
