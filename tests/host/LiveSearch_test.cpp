#include "host/search/LiveSearch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/FakeClock.h"
#include "tests/support/FakeLocalTime.h"
#include "tests/support/MailStore.h"
#include "tests/support/Process.h"
#include "tests/support/RunningProcess.h"

namespace kbx {
namespace {

class LiveSearchTest : public testing::Test {
 protected:
  /// The names of what comes new.
  std::string news(LiveSearch& live) {
    std::string names;
    const auto take = [&](Search& search, std::int64_t id) {
      names += search.path(id, nullptr).value_or("gone") + " ";
      return true;
    };
    EXPECT_TRUE(live.update(take, nullptr));
    return names;
  }

  MailStore _store{{{.path = "/a", .subject = "plan", .date = 2},
                    {.path = "/b", .subject = "other", .date = 1},
                    {.path = "/c", .subject = "plan", .date = 0}}};
  std::unique_ptr<StoreReader> _reader = _store.reader();
};

TEST_F(LiveSearchTest, EachMessageComesOnce) {
  LiveSearch live(*_reader, "plan", {});
  EXPECT_EQ(news(live), "/a /c ");
  EXPECT_EQ(news(live), "");
  _store.add({{.path = "/d", .subject = "plan"}, {.path = "/e", .subject = "other"}});
  EXPECT_EQ(news(live), "/d ");
  _store.add({{.path = "/f", .subject = "other"}});
  EXPECT_EQ(news(live), "");
}

TEST_F(LiveSearchTest, TheLimitIsOneOfTheBeginning) {
  LiveSearch live(*_reader, "plan", {.limit = 1});
  EXPECT_EQ(news(live), "/a ");
  _store.add({{.path = "/d", .subject = "plan"}, {.path = "/e", .subject = "plan"}});
  EXPECT_EQ(news(live), "/e /d ");
}

TEST_F(LiveSearchTest, DatesMoveWithTheClock) {
  FakeLocalTime zone;
  ScopedService<LocalTime> installedZone(zone);
  FakeClock clock(86400 * 10);
  ScopedService<Clock> installedClock(clock);
  LiveSearch live(*_reader, "on:today", {});
  EXPECT_EQ(news(live), "");
  clock.seconds = 86400 * 11;
  _store.add({{.path = "/today", .date = 86400 * 11 + 5}});
  EXPECT_EQ(news(live), "/today ");
}

TEST_F(LiveSearchTest, AWrongQueryIsAFaultAtOnce) {
  EXPECT_THROW(LiveSearch(*_reader, "(", {}), QueryFault);
}

TEST_F(LiveSearchTest, TheTakerMayStop) {
  LiveSearch live(*_reader, "plan", {});
  EXPECT_FALSE(live.update([](Search&, std::int64_t) { return false; }, nullptr));
}

class LiveSearchProcessTest : public testing::Test {
 protected:
  std::vector<std::string> command(std::vector<std::string> words) const {
    words.insert(words.begin(), {FERNCASE_BINARY, "search", "--db", _store.path(), "--live"});
    return words;
  }

  const MailStore _store{{{.path = "/a", .subject = "plan"}, {.path = "/b", .subject = "other"}}};
};

TEST_F(LiveSearchProcessTest, WhatIsStoredMeanwhileIsPrintedAtOnce) {
  RunningProcess search(command({"plan"}));
  ASSERT_EQ(search.line(), "/a");
  _store.add({{.path = "/c", .subject = "other"}});
  _store.add({{.path = "/d", .subject = "plan"}});
  EXPECT_EQ(search.line(), "/d");
  _store.remove("/a");
  _store.add({{.path = "/e", .subject = "plan"}});
  EXPECT_EQ(search.line(), "/e") << "and nothing that was printed before";
  search.tell(SIGINT);
  EXPECT_EQ(search.line(), std::nullopt);
  EXPECT_EQ(search.wait(), -1) << "the signal itself ends it";
  EXPECT_EQ(search.complaints(), "");
}

TEST_F(LiveSearchProcessTest, ItWaitsForTheFirstMatch) {
  RunningProcess search(command({"--ndjson", "nowhere OR later"}));
  _store.add({{.path = "/c", .subject = "later"}});
  EXPECT_THAT(search.line().value_or(""), testing::HasSubstr("\"path\": \"/c\""));
}

TEST_F(LiveSearchProcessTest, ItEndsWithItsReader) {
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  ::close(ends[0]);
  EXPECT_NE(Process(command({"nowhere"})).outputTo(ends[1]).run().exitCode, 0);
  ::close(ends[1]);
}

}  // namespace
}  // namespace kbx
