#include "host/watch/FolderWatcher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

#include "host/console/Interruption.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using Kind = FolderNotice::Kind;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

auto notice(Kind kind, const std::string& name, bool isFolder = false) {
  return AllOf(Field(&FolderNotice::kind, kind), Field(&FolderNotice::name, name),
               Field(&FolderNotice::isFolder, isFolder));
}

class FolderWatcherTest : public testing::Test {
 protected:
  void SetUp() override {
    int failure = 0;
    _watcher = makeFolderWatcher(&failure);
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

TEST_F(FolderWatcherTest, TellsOfAFileFromItsMakingToItsEnd) {
  _folder.write("a.eml", "x");
  EXPECT_THAT(notices(), ElementsAre(notice(Kind::Made, "a.eml"), notice(Kind::Touched, "a.eml"),
                                     notice(Kind::Written, "a.eml")));
  fs::permissions(_folder / "a.eml", fs::perms::owner_read);
  EXPECT_THAT(notices(), ElementsAre(notice(Kind::Touched, "a.eml")));
  fs::remove(_folder / "a.eml");
  EXPECT_THAT(notices(), Contains(notice(Kind::Removed, "a.eml")));
}

TEST_F(FolderWatcherTest, TheTwoNoticesOfAMoveHaveOneCookie) {
  fs::create_directory(_folder / "inner");
  notices();
  fs::rename(_folder / "inner", _folder / "other");
  const auto moved = notices();
  ASSERT_THAT(moved, ElementsAre(notice(Kind::MovedAway, "inner", true),
                                 notice(Kind::MovedHere, "other", true)));
  EXPECT_EQ(moved[0].cookie, moved[1].cookie);
  EXPECT_NE(moved[0].cookie, 0u);
}

TEST_F(FolderWatcherTest, AFolderKeepsItsWatchUnderEachOfItsPaths) {
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

TEST_F(FolderWatcherTest, OnlyFoldersAreWatched) {
  _folder.write("a.eml", "");
  fs::create_directory_symlink(_folder.path(), _folder / "link");
  EXPECT_EQ(_watcher->watch((_folder / "a.eml").string()), -ENOTDIR);
  EXPECT_EQ(_watcher->watch((_folder / "link").string()), -ENOTDIR);
  EXPECT_EQ(_watcher->watch((_folder / "missing").string()), -ENOENT);
}

TEST_F(FolderWatcherTest, NothingIsToldOfWhatIsLetGo) {
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

TEST_F(FolderWatcherTest, ManyNoticesAreReadAtOnce) {
  constexpr int kFiles = 3000;  // more than one read of the system call holds
  for (int i = 0; i < kFiles; ++i) _folder.write(std::to_string(i) + std::string(40, 'x'), "");
  EXPECT_EQ(notices().size(), std::size_t{2} * kFiles);
}

TEST_F(FolderWatcherTest, WaitingEndsWithTheMoment) {
  const Moment until = _watcher->now() + std::chrono::milliseconds(2);
  EXPECT_THAT(_watcher->wait(until), IsEmpty());
  EXPECT_GE(_watcher->now(), until);
}

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
