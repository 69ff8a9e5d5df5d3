#include "host/watch/WatchedFolders.h"

#include <gmock/gmock.h>

#include "tests/support/WatchTest.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using Event = WatchedFolders::Event;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// What the folders make of notices, for real folders and a watcher that tells what a test says.
class WatchedFoldersTest : public WatchTest {
 protected:
  void folder(std::string_view name) { fs::create_directories(_root / name); }
  void file(std::string_view name) { _folder.write("mail/" + std::string(name), "x"); }
  void tell(Kind kind, std::string_view entry, bool isFolder = false, std::uint32_t cookie = 0) {
    _watcher.tell(kind, _root / entry, isFolder, cookie);
    takeAll();
  }
  void takeAll() {
    for (const auto& notice : _watcher.wait(std::nullopt)) _folders.take(notice, _watcher.time);
  }
  /// The paths that have settled, from the root on.
  std::vector<std::string> settled() {
    std::vector<std::string> names;
    for (const std::string& path : _changes.take(_watcher.time))
      names.push_back(path == _root ? "." : fs::path(path).lexically_relative(_root).string());
    return names;
  }
  std::vector<std::string> settledLater() {
    _watcher.time += PendingChanges::kRest;
    return settled();
  }
  std::vector<std::string> watched() const {
    std::vector<std::string> names;
    for (const std::string& path : _watcher.watched())
      names.push_back(path == _root ? "." : fs::path(path).lexically_relative(_root).string());
    return names;
  }
  std::vector<Event::Kind> events() {
    std::vector<Event::Kind> kinds;
    for (const Event& event : _folders.takeEvents()) kinds.push_back(event.kind);
    return kinds;
  }

  PendingChanges _changes;
  WatchedFolders _folders{_watcher, _changes, {_root.string()}};
};

TEST_F(WatchedFoldersTest, AllFoldersAreWatchedButThoseWithoutMail) {
  for (auto name : {"a/b/c", "box/cur", "box/new", "box/tmp", "box/.Sent/cur", "box/.Sent/new",
                    ".git/objects", "tmp"})
    folder(name);
  file("a/b/one.eml");
  fs::create_directory_symlink(_folder.path(), _root / "link");
  _folders.begin();
  EXPECT_THAT(watched(),
              ElementsAre(".", ".git", "a", "a/b", "a/b/c", "box", "box/.Sent", "box/.Sent/cur",
                          "box/.Sent/new", "box/cur", "box/new", "tmp"));
  EXPECT_THAT(settled(), IsEmpty());
  EXPECT_EQ(_folders.count(), 12u);
}

TEST_F(WatchedFoldersTest, WhichFilesSettleAtOnceAndWhichRest) {
  folder("box/cur");
  folder("box/new");
  folder(".hidden");
  _folders.begin();
  struct Case {
    const char* rule;
    Kind kind;
    const char* name;
    bool settlesAtOnce, settlesLater;
  };
  for (const auto& [rule, kind, name, atOnce, later] :
       {Case{"a closed one is finished", Kind::Written, "a.eml", true, false},
        {"a new one may be written still", Kind::Made, "a.eml", false, true},
        {"and so may one that is written to", Kind::Touched, "a.emlx", false, true},
        {"what moved in is finished", Kind::MovedHere, "a.eml", true, false},
        {"what is gone is gone", Kind::Removed, "a.eml", true, false},
        {"in a Maildir names do not matter", Kind::MovedHere, "box/new/1690.M1", true, false},
        {"elsewhere they do", Kind::Written, "a.txt", false, false},
        {"what is gone may have been a message", Kind::Removed, "box/1690.M1", true, false},
        {"an importer's copy", Kind::Written, ".temp-KBXEMLXFile-1.emlx", false, false},
        {"a draft that an editor keeps", Kind::Written, ".a.eml", false, false},
        {"a download", Kind::Written, "box/new/a.part", false, false},
        {"a hidden folder", Kind::Written, ".hidden/a.eml", false, false}}) {
    SCOPED_TRACE(rule);
    tell(kind, name);
    EXPECT_EQ(settled().size(), atOnce ? 1u : 0u);
    EXPECT_EQ(settledLater().size(), later ? 1u : 0u);
  }
}

TEST_F(WatchedFoldersTest, BothPathsOfAMoveSettleTogether) {
  folder("cur");
  folder("new");
  _folders.begin();
  tell(Kind::MovedAway, "new/1690.M1", false, 7);
  EXPECT_THAT(settled(), IsEmpty());
  tell(Kind::MovedHere, "cur/1690.M1:2,S", false, 7);
  EXPECT_THAT(settled(), ElementsAre("cur/1690.M1:2,S", "new/1690.M1"));
  EXPECT_EQ(_folders.deadline(), std::nullopt);
}

TEST_F(WatchedFoldersTest, WhatMovesToATemporaryNameIsGone) {
  _folders.begin();
  tell(Kind::MovedAway, "a.eml", false, 7);
  tell(Kind::MovedHere, "a.eml~", false, 7);
  EXPECT_THAT(settled(), ElementsAre("a.eml"));
}

TEST_F(WatchedFoldersTest, AMoveWithoutASecondNoticeLedAway) {
  folder("inner/deep");
  _folders.begin();
  tell(Kind::MovedAway, "a.eml", false, 7);
  fs::rename(_root / "inner", _folder / "outside");
  tell(Kind::MovedAway, "inner", true, 8);
  EXPECT_EQ(_folders.deadline(), _watcher.time + WatchedFolders::kPairing);
  _folders.expire(_watcher.time);
  EXPECT_THAT(settled(), IsEmpty());
  _watcher.time += WatchedFolders::kPairing;
  _folders.expire(_watcher.time);
  EXPECT_THAT(settled(), ElementsAre("a.eml", "inner"));
  EXPECT_THAT(watched(), ElementsAre("."));
  EXPECT_EQ(_folders.deadline(), std::nullopt);
}

TEST_F(WatchedFoldersTest, ANewFolderIsGoneThroughBecauseFilesMayHaveComeBeforeItsWatch) {
  _folders.begin();
  folder("new one/deep");
  file("new one/deep/a.eml");
  tell(Kind::Made, "new one", true);
  EXPECT_THAT(watched(), ElementsAre(".", "new one", "new one/deep"));
  EXPECT_THAT(settled(), ElementsAre("new one"));
  tell(Kind::Made, "new one/deep", true);  // its notice, though it was found already
  EXPECT_EQ(_folders.count(), 3u);
  tell(Kind::Written, "new one/deep/a.eml");
  EXPECT_THAT(settled(), ElementsAre("new one/deep", "new one/deep/a.eml"));
}

TEST_F(WatchedFoldersTest, AFolderThatIsGoneBeforeItsNoticeIsNoTrouble) {
  _folders.begin();
  tell(Kind::Made, "gone", true);
  EXPECT_THAT(events(), IsEmpty());
  EXPECT_THAT(watched(), ElementsAre("."));
}

TEST_F(WatchedFoldersTest, AMovedFolderKeepsItsWatchesUnderItsNewPath) {
  folder("from/deep");
  folder("to");
  _folders.begin();
  fs::rename(_root / "from", _root / "to/moved");
  _watcher.tell(Kind::MovedAway, _root / "from", true, 7);
  _watcher.tell(Kind::MovedHere, _root / "to/moved", true, 7);
  _watcher.tell(Kind::Written, _root / "from/deep/a.eml");  // by the watch that it has
  takeAll();
  EXPECT_THAT(settled(), ElementsAre("from", "to/moved", "to/moved/deep/a.eml"));
  EXPECT_EQ(_folders.count(), 4u);
}

TEST_F(WatchedFoldersTest, WhatWasMadeInAFolderBeforeItMovedIsFoundBehindIt) {
  folder("from/deep");
  _folders.begin();
  _watcher.tell(Kind::Made, _root / "from/deep/late", true);
  _watcher.tell(Kind::MovedAway, _root / "from", true, 7);
  _watcher.tell(Kind::MovedHere, _root / "to", true, 7);
  folder("from/deep/late");
  fs::rename(_root / "from", _root / "to");  // all of it before the first notice is read
  takeAll();
  EXPECT_EQ(_folders.count(), 4u);
  tell(Kind::Written, "to/deep/late/a.eml");
  EXPECT_THAT(settled(), testing::Contains("to/deep/late/a.eml"));
}

TEST_F(WatchedFoldersTest, AFolderThatComesBackUnderAnotherCookieIsNew) {
  folder("from/deep");
  _folders.begin();
  fs::rename(_root / "from", _root / "to");
  tell(Kind::MovedAway, "from", true, 7);
  tell(Kind::MovedHere, "to", true, 8);
  EXPECT_EQ(_folders.count(), 3u);
  _watcher.time += WatchedFolders::kPairing;
  _folders.expire(_watcher.time);
  EXPECT_EQ(_folders.count(), 3u);
  EXPECT_THAT(watched(), ElementsAre(".", "to", "to/deep"));
  EXPECT_THAT(settled(), ElementsAre("from", "to"));
}

TEST_F(WatchedFoldersTest, ADeletedFolderIsGoneThroughAndLetGo) {
  folder("inner/deep");
  _folders.begin();
  _watcher.tellFolder(Kind::Ended, _root / "inner/deep");
  _watcher.tell(Kind::Removed, _root / "inner/deep", true);
  _watcher.tell(Kind::Removed, _root / "inner", true);
  _watcher.tellFolder(Kind::Ended, _root / "inner");
  fs::remove_all(_root / "inner");
  takeAll();
  EXPECT_THAT(settled(), ElementsAre("inner", "inner/deep"));
  EXPECT_EQ(_folders.count(), 1u);
  EXPECT_FALSE(_folders.hasUnwatched());
}

TEST_F(WatchedFoldersTest, AMaildirThatIsMadeStepByStepIsWatchedInTheEnd) {
  _folders.begin();
  folder(".Sent/cur");
  tell(Kind::Made, ".Sent", true);
  EXPECT_THAT(watched(), ElementsAre(".", ".Sent"));
  tell(Kind::Made, ".Sent/cur", true);
  EXPECT_THAT(watched(), ElementsAre(".", ".Sent"));
  folder(".Sent/new");
  tell(Kind::Made, ".Sent/new", true);
  EXPECT_THAT(watched(), ElementsAre(".", ".Sent", ".Sent/cur", ".Sent/new"));
  EXPECT_THAT(settled(), testing::Contains(".Sent"));
}

TEST_F(WatchedFoldersTest, WithoutWatchesLeftTheRestIsToldOnceAndTriedAgain) {
  for (auto name : {"a/deep", "b", "c"}) folder(name);
  _watcher.limit = 2;
  _folders.begin();
  EXPECT_EQ(_folders.count(), 2u);
  EXPECT_TRUE(_folders.hasUnwatched());
  EXPECT_THAT(events(), ElementsAre(Event::Kind::Limited));
  EXPECT_THAT(settled(), IsEmpty());
  _folders.retry();
  EXPECT_THAT(events(), IsEmpty());
  EXPECT_EQ(settled().size(), 2u);
  _watcher.limit = 100;
  _folders.retry();
  EXPECT_EQ(settled().size(), 2u);
  EXPECT_EQ(_folders.count(), 5u);
  EXPECT_FALSE(_folders.hasUnwatched());
}

TEST_F(WatchedFoldersTest, AFolderWithoutAWatchIsFollowedWhereItMoves) {
  for (auto name : {"a", "b"}) folder(name);
  _watcher.limit = 1;
  _folders.begin();
  fs::rename(_root / "b", _root / "z");
  tell(Kind::MovedAway, "b", true, 7);
  tell(Kind::MovedHere, "z", true, 7);
  EXPECT_THAT(settled(), ElementsAre("b", "z"));
  _watcher.limit = 100;
  _folders.retry();
  EXPECT_THAT(watched(), ElementsAre(".", "a", "z"));
}

TEST_F(WatchedFoldersTest, AFolderThatCannotBeReadIsToldAndTriedWhenItsModeChanges) {
  folder("closed");
  _watcher.refused[path("closed")] = EACCES;
  _folders.begin();
  const auto told = _folders.takeEvents();
  ASSERT_EQ(told.size(), 1u);
  EXPECT_EQ(told[0].path, path("closed"));
  EXPECT_EQ(told[0].failure, EACCES);
  _watcher.refused.clear();
  tell(Kind::Touched, "closed", true);
  EXPECT_THAT(watched(), ElementsAre(".", "closed"));
  EXPECT_THAT(settled(), ElementsAre("closed"));
}

TEST_F(WatchedFoldersTest, ARootThatMovesAwayIsLostAndWhatItHeldIsNotGone) {
  folder("inner");
  _folders.begin();
  _changes.settle(path("inner/a.eml"));
  fs::rename(_root, _folder / "elsewhere");
  _watcher.tellFolder(Kind::FolderMoved, _root);
  takeAll();
  EXPECT_THAT(events(), ElementsAre(Event::Kind::Lost));
  EXPECT_THAT(watched(), IsEmpty());
  EXPECT_FALSE(_folders.isInRoot(path("inner/a.eml")));
  EXPECT_THAT(_folders.presentRoots(), IsEmpty());
  _folders.retry();
  EXPECT_THAT(events(), IsEmpty());
  fs::rename(_folder / "elsewhere", _root);
  settled();
  _folders.retry();
  EXPECT_THAT(events(), ElementsAre(Event::Kind::Found));
  EXPECT_THAT(watched(), ElementsAre(".", "inner"));
  EXPECT_THAT(settled(), ElementsAre("."));
}

TEST_F(WatchedFoldersTest, AnotherFolderInTheRootsPlaceIsFollowedInstead) {
  folder("old");
  _folders.begin();
  fs::rename(_root, _folder / "elsewhere");
  folder("fresh");
  _folders.checkRoots();
  EXPECT_THAT(events(), IsEmpty());
  EXPECT_EQ(_folders.count(), 2u);
  EXPECT_THAT(settled(), ElementsAre("."));
}

TEST_F(WatchedFoldersTest, ARootThatIsNotThereYetIsWaitedFor) {
  fs::remove(_root);
  _folders.begin();
  EXPECT_THAT(events(), ElementsAre(Event::Kind::Lost));
  EXPECT_TRUE(_folders.hasUnwatched());
  folder("inner");
  _folders.retry();
  EXPECT_THAT(watched(), ElementsAre(".", "inner"));
  EXPECT_FALSE(_folders.hasUnwatched());
}

TEST_F(WatchedFoldersTest, WhatIsUnmountedInsideIsNotGone) {
  folder("mounted");
  file("mounted/a.eml");
  _folders.begin();
  _watcher.tellFolder(Kind::Ended, _root / "mounted");  // and its folder is there, covered no more
  takeAll();
  EXPECT_THAT(settled(), IsEmpty());
  EXPECT_THAT(events(), ElementsAre(Event::Kind::Lost));
  EXPECT_TRUE(_folders.hasUnwatched());
  _folders.retry();
  EXPECT_THAT(settled(), IsEmpty());
  fs::rename(_root / "mounted", _root / "before");  // as good as mounting: another folder shows
  folder("mounted");
  _folders.retry();
  EXPECT_THAT(settled(), ElementsAre("mounted"));
  EXPECT_THAT(events(), ElementsAre(Event::Kind::Found));
}

TEST_F(WatchedFoldersTest, ALinkToAFolderIsARootLikeAnother) {
  folder("inner");
  fs::create_directory_symlink(_root, _folder / "link");
  const std::string link = (_folder / "link").string();
  WatchedFolders folders(_watcher, _changes, {link});
  folders.begin();
  EXPECT_EQ(folders.count(), 2u);
  _watcher.tell(Kind::Written, link + "/inner/a.eml");
  for (const auto& notice : _watcher.wait(std::nullopt)) folders.take(notice, _watcher.time);
  EXPECT_THAT(_changes.take(_watcher.time), ElementsAre(link + "/inner/a.eml"));
}

TEST_F(WatchedFoldersTest, NoticesOfFoldersThatWereLetGoMeanNothing) {
  _folders.begin();
  tell(Kind::Written, "unknown/a.eml");
  tell(Kind::Ended, "unknown/a.eml");
  EXPECT_THAT(settled(), IsEmpty());
}

TEST_F(WatchedFoldersTest, LostNoticesAreRememberedUntilItBeginsAnew) {
  _folders.begin();
  _watcher.loseNotices();
  takeAll();
  EXPECT_TRUE(_folders.hasLostNotices());
  _folders.begin();
  EXPECT_FALSE(_folders.hasLostNotices());
  EXPECT_EQ(_watcher.restarts, 2);
}

// The first notice of "a" finds the second folder of this name.
TEST_F(WatchedFoldersTest, AFolderWhoseNameWasTakenAgainBeforeAnythingWasToldIsWatched) {
  _folders.begin();
  folder("a/inner");
  fs::rename(_root / "a", _root / "b");
  folder("a");
  _watcher.tell(Kind::Made, _root / "a", true);
  _watcher.tell(Kind::MovedAway, _root / "a", true, 7);
  _watcher.tell(Kind::MovedHere, _root / "b", true, 7);
  _watcher.tell(Kind::Made, _root / "a", true);
  takeAll();
  EXPECT_THAT(watched(), ElementsAre(".", "a", "b", "b/inner"));
  file("b/inner/later.eml");
  tell(Kind::Written, "b/inner/later.eml");
  EXPECT_THAT(settled(), testing::Contains("b/inner/later.eml"));
}

}  // namespace
}  // namespace kbx
