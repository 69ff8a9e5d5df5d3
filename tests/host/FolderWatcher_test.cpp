#include "host/watch/FolderWatcher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <set>

#include "host/console/Interruption.h"
#include "host/watch/linux/FolderWatchersLinux.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using Kind = FolderNotice::Kind;
using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

auto notice(Kind kind, const std::string& name, bool isFolder = false) {
  return AllOf(Field(&FolderNotice::kind, kind), Field(&FolderNotice::name, name),
               Field(&FolderNotice::isFolder, isFolder));
}

struct System {
  const char* name;
  std::unique_ptr<FolderWatcher> (*make)(int* failure);
};

void PrintTo(const System& system, std::ostream* output) { *output << system.name; }

class FolderWatcherTest : public testing::TestWithParam<System> {
 protected:
  void SetUp() override {
    int failure = 0;
    _watcher = GetParam().make(&failure);
    if (failure == EPERM || failure == EINVAL || failure == ENOSYS)
      GTEST_SKIP() << GetParam().name << ": " << std::strerror(failure);
    ASSERT_TRUE(_watcher) << std::strerror(failure);
    _watch = _watcher->watch(_folder.path().string());
    ASSERT_GE(_watch, 0);
  }
  /// What is there now: the system has it ready when the call that caused it returns.
  std::vector<FolderNotice> notices() { return _watcher->wait(Moment::min()); }

  TemporaryFolder _folder;
  std::unique_ptr<FolderWatcher> _watcher;
  int _watch = -1;
};

TEST_P(FolderWatcherTest, TellsOfAFileFromItsMakingToItsEnd) {
  _folder.write("a.eml", "x");
  EXPECT_THAT(notices(), ElementsAre(notice(Kind::Made, "a.eml"), notice(Kind::Touched, "a.eml"),
                                     notice(Kind::Written, "a.eml")));
  fs::permissions(_folder / "a.eml", fs::perms::owner_read);
  EXPECT_THAT(notices(), ElementsAre(notice(Kind::Touched, "a.eml")));
  fs::remove(_folder / "a.eml");
  EXPECT_THAT(notices(), Contains(notice(Kind::Removed, "a.eml")));
}

TEST_P(FolderWatcherTest, WhatIsThereIsToldLast) {
  _folder.write("a.eml", "x");
  fs::remove(_folder / "a.eml");
  _folder.write("a.eml", "y");
  EXPECT_THAT(notices().back(), notice(Kind::Written, "a.eml"));
  fs::create_directory(_folder / "inner");
  fs::remove(_folder / "inner");
  fs::create_directory(_folder / "inner");
  EXPECT_THAT(notices().back(), notice(Kind::Made, "inner", true));
}

TEST_P(FolderWatcherTest, TheTwoNoticesOfAMoveHaveOneCookie) {
  fs::create_directory(_folder / "inner");
  notices();
  fs::rename(_folder / "inner", _folder / "other");
  const auto moved = notices();
  ASSERT_THAT(moved, ElementsAre(notice(Kind::MovedAway, "inner", true),
                                 notice(Kind::MovedHere, "other", true)));
  EXPECT_EQ(moved[0].cookie, moved[1].cookie);
  EXPECT_NE(moved[0].cookie, 0u);
}

TEST_P(FolderWatcherTest, AMoveOutOfTheFolderHasOneNotice) {
  const TemporaryFolder outside;
  _folder.write("a.eml", "");
  notices();
  fs::rename(_folder / "a.eml", outside / "a.eml");
  EXPECT_THAT(notices(), ElementsAre(notice(Kind::MovedAway, "a.eml")));
  fs::rename(outside / "a.eml", _folder / "b.eml");
  EXPECT_THAT(notices(), ElementsAre(notice(Kind::MovedHere, "b.eml")));
}

// Equal events that nobody has read yet may be told as one, so the order could be a wrong one.
TEST_P(FolderWatcherTest, WhereAFolderIsIsToldOrSaidToBeUnknown) {
  fs::create_directory(_folder / "one");
  notices();
  fs::rename(_folder / "one", _folder / "two");
  fs::rename(_folder / "two", _folder / "one");
  fs::rename(_folder / "one", _folder / "two");
  EXPECT_THAT(notices().back(),
              AnyOf(notice(Kind::MovedHere, "two", true), Field(&FolderNotice::kind, Kind::Lost)));
  fs::rename(_folder / "two", _folder / "one");
  EXPECT_THAT(notices().back(), notice(Kind::MovedHere, "one", true)) << "one alone is certain";
}

TEST_P(FolderWatcherTest, AFolderThatMovesIsTold) {
  fs::rename(_folder.path(), _folder.path().string() + ".moved");
  const auto told = notices();
  fs::rename(_folder.path().string() + ".moved", _folder.path());
  EXPECT_THAT(told, ElementsAre(AllOf(Field(&FolderNotice::kind, Kind::FolderMoved),
                                      Field(&FolderNotice::watch, _watch))));
}

TEST_P(FolderWatcherTest, AFileSystemThatHasNoHandlesIsWatchedToo) {
  const int watch = _watcher->watch("/proc");
  EXPECT_GE(watch, 0);
  EXPECT_EQ(_watcher->watch("/proc"), watch);
  _watcher->unwatch(watch);
}

TEST_P(FolderWatcherTest, AFolderKeepsItsWatchUnderEachOfItsPaths) {
  fs::create_directory(_folder / "inner");
  const int inner = _watcher->watch((_folder / "inner").string());
  EXPECT_GE(inner, 0);
  EXPECT_NE(inner, _watch);
  fs::rename(_folder / "inner", _folder / "other");
  EXPECT_EQ(_watcher->watch((_folder / "other").string()), inner);
  notices();
  fs::remove(_folder / "other");
  EXPECT_THAT(notices(), Contains(AllOf(Field(&FolderNotice::kind, Kind::Ended),
                                        Field(&FolderNotice::watch, inner))));
}

TEST_P(FolderWatcherTest, OnlyFoldersAreWatched) {
  _folder.write("a.eml", "");
  fs::create_directory_symlink(_folder.path(), _folder / "link");
  EXPECT_EQ(_watcher->watch((_folder / "a.eml").string()), -ENOTDIR);
  EXPECT_EQ(_watcher->watch((_folder / "link").string()), -ENOTDIR);
  EXPECT_EQ(_watcher->watch((_folder / "missing").string()), -ENOENT);
}

TEST_P(FolderWatcherTest, NothingIsToldOfWhatIsLetGo) {
  fs::create_directory(_folder / "inner");
  const int inner = _watcher->watch((_folder / "inner").string());
  _watcher->unwatch(inner);
  notices();
  _folder.write("inner/a.eml", "");
  EXPECT_THAT(notices(), IsEmpty());
  _folder.write("b.eml", "");
  EXPECT_EQ(_watcher->restart(), 0);
  EXPECT_THAT(notices(), IsEmpty());
}

TEST_P(FolderWatcherTest, ManyNoticesAreReadAtOnce) {
  constexpr int kFiles = 3000;  // more than one read of the system call holds
  for (int i = 0; i < kFiles; ++i) _folder.write(std::to_string(i) + std::string(40, 'x'), "");
  EXPECT_EQ(notices().size(), std::size_t{2} * kFiles);
}

TEST_P(FolderWatcherTest, WaitingEndsWithTheMoment) {
  const Moment until = _watcher->now() + std::chrono::milliseconds(2);
  EXPECT_THAT(_watcher->wait(until), IsEmpty());
  EXPECT_GE(_watcher->now(), until);
}

// In a process of its own, with mounts of its own. Answers 0 when the watches have ended.
int unmount(const System& system, const std::string& point, bool isMountedAnew) {
  constexpr int kMayNot = 77;
  const auto mount = [&] { return ::mount("none", point.c_str(), "tmpfs", 0, nullptr); };
  if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", "", MS_REC | MS_PRIVATE, nullptr) != 0 ||
      mount() != 0)
    return kMayNot;
  int failure = 0;
  const auto watcher = system.make(&failure);
  if (!watcher) return kMayNot;
  fs::create_directory(point + "/inner");
  const std::set<int> watches{watcher->watch(point), watcher->watch(point + "/inner")};
  if (*watches.begin() < 0 || !watcher->wait(Moment::min()).empty()) return 1;
  if (::umount2(point.c_str(), 0) != 0) return 2;
  if (isMountedAnew && mount() != 0) return 3;
  std::set<int> ended;
  for (const auto& notice : watcher->wait(watcher->now() + std::chrono::seconds(30)))
    if (notice.kind == Kind::Ended) ended.insert(notice.watch);
  return ended == watches ? 0 : 4;
}

TEST_P(FolderWatcherTest, WhatIsUnmountedEndsItsWatches) {
  for (const bool isMountedAnew : {false, true}) {
    int code = 0;
    EXPECT_EXIT(
        std::_Exit(unmount(GetParam(), _folder.path().string(), isMountedAnew)),
        [&](int status) {
          code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
          return code == 0 || code == 77;
        },
        "");
    if (code == 77) GTEST_SKIP() << "this process may not mount";
  }
}

INSTANTIATE_TEST_SUITE_P(Linux, FolderWatcherTest,
                         testing::Values(System{"Inotify", makeInotify},
                                         System{"Fanotify", makeFanotify}),
                         [](const auto& test) { return test.param.name; });

// In a process of its own, because a wish stays.
TEST(FolderWatcherDeathTest, AWishToEndThatCameBeforeTheWaitingEndsIt) {
  EXPECT_EXIT(
      {
        int failure = 0;
        auto watcher = makeFolderWatcher(&failure);
        const Interruption noted;
        std::raise(SIGTERM);
        watcher->wait(std::nullopt);  // or the test never ends
        std::_Exit(Interruption::isWished() ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace kbx
