#include "host/watch/WatchLoop.h"

#include <gmock/gmock.h>

#include <functional>
#include <set>

#include "tests/support/WatchTest.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using Answer = WatchedIndex::Answer;
using testing::ElementsAre;
using testing::IsEmpty;

class RecordingIndex final : public WatchedIndex {
 public:
  Answer update(const std::vector<std::string>& paths, Ref<NSError>* error) override {
    updates.push_back(paths);
    if (answer != Answer::Done) *error = posixError(EBUSY);
    if (meanwhile) meanwhile();
    return answer;
  }
  std::vector<std::vector<std::string>> updates;
  Answer answer = Answer::Done;
  std::function<void()> meanwhile;
};

class RecordingListener final : public WatchListener {
 public:
  void ready(std::size_t) override { told.emplace_back("ready"); }
  void rescanning() override { told.emplace_back("rescanning"); }
  void folderEvent(const WatchedFolders::Event&) override { told.emplace_back("folder"); }
  void waiting(NSError*) override { told.emplace_back("waiting"); }
  void failed(NSError*) override { told.emplace_back("failed"); }
  void updated(std::size_t) override { told.emplace_back("updated"); }
  std::vector<std::string> told;
};

class WatchLoopTest : public WatchTest {
 protected:
  void begin() {
    _loop.begin();
    _loop.step();
    _index.updates.clear();
    _listener.told.clear();
  }

  RecordingIndex _index;
  RecordingListener _listener;
  WatchLoop _loop{_watcher, _index, _listener, {_root.string()}};
};

TEST_F(WatchLoopTest, EverythingIsWatchedBeforeItIsGoneThroughOnce) {
  fs::create_directory(_root / "inner");
  std::vector<std::string> watchedMeanwhile;
  _index.meanwhile = [&] { watchedMeanwhile = _watcher.watched(); };
  _loop.begin();
  EXPECT_TRUE(_loop.step());
  EXPECT_THAT(_index.updates, ElementsAre(ElementsAre(_root.string())));
  EXPECT_THAT(watchedMeanwhile, ElementsAre(_root.string(), path("inner")));
  EXPECT_THAT(_listener.told, ElementsAre("ready", "updated"));
}

TEST_F(WatchLoopTest, WithoutChangesItWaitsWithoutEnd) {
  begin();
  EXPECT_TRUE(_loop.step());
  EXPECT_TRUE(_watcher.waitedWithoutEnd);
  EXPECT_THAT(_index.updates, IsEmpty());
}

TEST_F(WatchLoopTest, AWrittenFileIsLookedAtAtOnceAndALinkedOneAfterItsRest) {
  begin();
  const Moment start = _watcher.time;
  _watcher.tell(Kind::Written, path("a.eml"));
  _watcher.tell(Kind::Made, path("b.eml"));
  _loop.step();
  EXPECT_EQ(_watcher.time, start);
  EXPECT_THAT(_index.updates, ElementsAre(ElementsAre(path("a.eml"))));
  _loop.step();
  _loop.step();
  EXPECT_EQ(_watcher.time, start + PendingChanges::kRest);
  EXPECT_THAT(_index.updates, ElementsAre(ElementsAre(path("a.eml")), ElementsAre(path("b.eml"))));
}

TEST_F(WatchLoopTest, WhatChangesWhileItIsLookedAtIsLookedAtAgain) {
  begin();
  _index.meanwhile = [&] {
    if (_index.updates.size() == 1) _watcher.tell(Kind::Written, path("a.eml"));
  };
  _watcher.tell(Kind::Written, path("a.eml"));
  _loop.step();
  _loop.step();
  EXPECT_EQ(_index.updates.size(), 2u);
}

TEST_F(WatchLoopTest, WhatLeftWithoutANoticeOfWhereToIsLookedAtInTime) {
  begin();
  _watcher.tell(Kind::MovedAway, path("a.eml"), false, 7);
  for (int i = 0; i < 3; ++i) _loop.step();
  EXPECT_THAT(_index.updates, ElementsAre(ElementsAre(path("a.eml"))));
  EXPECT_TRUE(_watcher.waitedWithoutEnd);
}

TEST_F(WatchLoopTest, LostNoticesLeadToGoingThroughEverything) {
  begin();
  fs::create_directory(_root / "unseen");
  _watcher.tell(Kind::Written, path("a.eml"));
  _watcher.loseNotices();
  _loop.step();
  EXPECT_THAT(_listener.told, ElementsAre("rescanning", "updated"));
  EXPECT_THAT(_index.updates, ElementsAre(ElementsAre(_root.string(), path("a.eml"))));
  EXPECT_THAT(_watcher.watched(), ElementsAre(_root.string(), path("unseen")));
}

TEST_F(WatchLoopTest, WhileSomebodyElseWritesItTriesAgainUntilItIsDone) {
  begin();
  _index.answer = Answer::Busy;
  _watcher.tell(Kind::Written, path("a.eml"));
  const Moment start = _watcher.time;
  _loop.step();
  _loop.step();
  _watcher.tell(Kind::Written, path("b.eml"));
  for (int i = 0; i < 3; ++i) _loop.step();
  EXPECT_THAT(_listener.told, ElementsAre("waiting"));
  EXPECT_GE(_index.updates.size(), 2u);
  EXPECT_LE(_index.updates.size(), 4u);
  EXPECT_GE(_watcher.time, start + WatchLoop::kBusyRetry);
  _index.answer = Answer::Done;
  _loop.step();
  _loop.step();
  EXPECT_THAT(_index.updates.back(), ElementsAre(path("a.eml"), path("b.eml")));
  EXPECT_EQ(_listener.told.back(), "updated");
  _loop.step();
  EXPECT_TRUE(_watcher.waitedWithoutEnd);
}

TEST_F(WatchLoopTest, ItIsReadyOnlyWhenTheFirstUpdateIsDone) {
  _index.answer = Answer::Busy;
  _loop.begin();
  _loop.step();
  EXPECT_THAT(_listener.told, ElementsAre("waiting"));
  _index.answer = Answer::Done;
  _loop.step();
  _loop.step();
  EXPECT_THAT(_listener.told, ElementsAre("waiting", "ready", "updated"));
}

TEST_F(WatchLoopTest, AFirstUpdateThatIsInterruptedDoesNotMakeItReady) {
  _index.answer = Answer::Interrupted;
  _loop.begin();
  EXPECT_TRUE(_loop.step());
  EXPECT_THAT(_listener.told, IsEmpty());
}

TEST_F(WatchLoopTest, AFailedIndexEndsIt) {
  begin();
  _index.answer = Answer::Failed;
  _watcher.tell(Kind::Written, path("a.eml"));
  EXPECT_FALSE(_loop.step());
  EXPECT_THAT(_listener.told, ElementsAre("failed"));
}

TEST_F(WatchLoopTest, FoldersWithoutAWatchAreGoneThroughNowAndThen) {
  for (auto name : {"a", "b"}) fs::create_directory(_root / name);
  _watcher.limit = 2;
  _loop.begin();
  _loop.step();
  EXPECT_THAT(_listener.told, ElementsAre("folder", "ready", "updated"));
  const Moment start = _watcher.time;
  _index.updates.clear();
  _loop.step();
  EXPECT_EQ(_watcher.time, start + WatchLoop::kRetry);
  ASSERT_EQ(_index.updates.size(), 1u);
  EXPECT_EQ(_index.updates[0].size(), 1u);
  _watcher.limit = 100;
  _loop.step();
  EXPECT_EQ(_watcher.watched().size(), 3u);
  _loop.step();
  EXPECT_TRUE(_watcher.waitedWithoutEnd);
}

TEST_F(WatchLoopTest, WhatALostRootHeldIsNotAskedForAndItsReturnIsSeen) {
  begin();
  fs::rename(_root, _folder / "elsewhere");
  _watcher.tell(Kind::Removed, path("a.eml"));
  _loop.step();
  EXPECT_THAT(_index.updates, IsEmpty());
  EXPECT_THAT(_listener.told, ElementsAre("folder"));
  fs::rename(_folder / "elsewhere", _root);
  _loop.step();  // notes that a root is gone
  _loop.step();
  EXPECT_THAT(_index.updates, ElementsAre(ElementsAre(_root.string())));
}

TEST_F(WatchLoopTest, ARootThatIsGoneIsLookedForSoonAndThenMoreSeldom) {
  begin();
  fs::rename(_root, _folder / "elsewhere");
  _watcher.tell(Kind::Removed, path("a.eml"));
  _loop.step();
  _loop.step();  // notes that a root is gone
  const Moment start = _watcher.time;
  for (int i = 0; i < 3; ++i) _loop.step();
  EXPECT_EQ(_watcher.time, start + 7 * WatchLoop::kFirstLook);
  for (int i = 0; i < 10; ++i) _loop.step();
  const Moment later = _watcher.time;
  _loop.step();
  EXPECT_LE(_watcher.time - later, WatchLoop::kRetry);
  fs::create_directory(_root);
  for (int i = 0; i < 2; ++i) _loop.step();
  EXPECT_THAT(_index.updates, ElementsAre(ElementsAre(_root.string())));
}

}  // namespace
}  // namespace kbx
