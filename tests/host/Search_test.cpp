#include "host/search/Search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/support/FakeClock.h"
#include "tests/support/FakeLocalTime.h"
#include "tests/support/MailStore.h"

namespace kbx {
namespace {

constexpr double kDay = 86400;
constexpr double kNow = 1715952600;  // Friday 2024-05-17 13:30:00 UTC

const std::vector<TestMail> kMails{
    {.path = "/mail/engine.eml",
     .subject = "The Analytical Engine",
     .body = "Dear Charles, the engine weaves algebraic patterns.",
     .authors = {"Ada Lovelace"},
     .authorAddresses = {"ada@example.org"},
     .recipientAddresses = {"charles@example.org"},
     .attachments = {"drawing.pdf"},
     .date = kNow - kDay,
     .isRead = true},
    {.path = "/mail/inbox/reply.eml",
     .subject = "Re: The Analytical Engine",
     .body = "It weaves nothing yet.",
     .authors = {"Charles Babbage"},
     .authorAddresses = {"charles@example.org"},
     .recipientAddresses = {"ada@example.org"},
     .date = kNow,
     .isRead = false,
     .isFlagged = true},
    {.path = "/mail/inbox2/budget.eml",
     .subject = "Crème brûlée budget",
     .body = "A café bill. It says \"paid\".",
     .authors = {"José Müller"},
     .authorAddresses = {"jose@example.com"},
     .list = "food.lists.example.com",
     .date = kNow - 400 * kDay},
    {.path = "/mail/undated.eml", .subject = "weaves", .body = "engine"},
};

class SearchTest : public testing::Test {
 protected:
  /// The names of the files without ".eml", in the order of the search.
  std::string found(std::string_view query, SearchSettings settings = {}) {
    Search search(*_reader, parseQuery(query), std::move(settings));
    std::string names;
    Ref<NSError> error;
    const bool isDone = search.run(
        [&](std::int64_t id) {
          const std::string path = search.path(id, nullptr).value_or("gone");
          const std::size_t begin = path.rfind('/') + 1;
          names += (names.empty() ? "" : " ") + path.substr(begin, path.size() - begin - 4);
          return true;
        },
        &error);
    EXPECT_TRUE(isDone) << text(error->localizedDescription());
    return names;
  }
  Search search(std::string_view query) { return {*_reader, parseQuery(query)}; }

  FakeClock _clock{kNow};
  FakeLocalTime _zone;
  ScopedService<Clock> _installedClock{_clock};
  ScopedService<LocalTime> _installedZone{_zone};
  MailStore _store{kMails};
  std::unique_ptr<StoreReader> _reader = _store.reader();
};

TEST_F(SearchTest, WordsFindTheNewestFirst) {
  struct Case {
    const char *query, *found;
  };
  for (auto [query, expected] : {Case{"weaves", "reply engine undated"},
                                 {"engine weaves", "reply engine undated"},
                                 {"ENGINE", "reply engine undated"},
                                 {"engine -charles", "undated"},
                                 {"-charles", "budget undated"},
                                 {"-weaves", "budget"},
                                 {"-weaves -budget", ""},
                                 {"\"analytical engine\"", "reply engine"},
                                 {"\"engine analytical\"", ""},
                                 {"analyt*", "reply engine"},
                                 {"\"weaves alg\"*", "engine"},
                                 {"budget OR undated", "budget undated"},
                                 {"(budget OR weaves) -charles", "budget undated"},
                                 {"creme", "budget"},
                                 {"CAFÉ", "budget"},
                                 {"muller", "budget"},
                                 {"subject:weaves", "undated"},
                                 {"body:weaves", "reply engine"},
                                 {"from:ada", "engine"},
                                 {"to:ada", "reply"},
                                 {"from:ada OR to:ada", "reply engine"},
                                 {"from:(ada OR jose)", "engine budget"},
                                 {"from:ada@example.org", "engine"},
                                 {"from:\"ada lovelace\"", "engine"},
                                 {"attachment:drawing", "engine"},
                                 {"file:reply", "reply"},
                                 {"list:food.lists.example.com", "budget"},
                                 {"has:attachment", "engine"},
                                 {"-has:attachment", "reply budget undated"},
                                 {"is:read", "engine"},
                                 {"is:unread", "reply"},
                                 {"-is:read", "reply budget undated"},
                                 {"is:flagged", "reply"},
                                 {"-is:unread -is:read", "budget undated"},
                                 {"*", "reply engine budget undated"},
                                 {"-*", ""},
                                 {"on:today", "reply"},
                                 {"on:yesterday", "engine"},
                                 {"after:yesterday", "reply engine"},
                                 {"before:today", "engine budget"},
                                 {"before:2024", "budget"},
                                 {"-after:2024", "budget undated"},
                                 {"on:2024-05 weaves", "reply engine"},
                                 {"on:2024 -from:ada", "reply"},
                                 {"after:1d engine", "reply engine"},
                                 {"is:unread OR before:2024", "reply budget"},
                                 {"(is:unread weaves) OR budget", "reply budget"},
                                 {"nowhere", ""},
                                 {"\"paid\"", "budget"}}) {
    SCOPED_TRACE(query);
    EXPECT_EQ(found(query), expected);
  }
}

TEST_F(SearchTest, ATermWithoutAWordIsLeftOutWhereOthersAre) {
  EXPECT_EQ(found("weaves - charles"), "reply engine");
  EXPECT_EQ(found("budget & -*"), "");
  EXPECT_EQ(found("budget -\"…\""), "budget");
  EXPECT_EQ(found("budget OR \"…\""), "budget");
  EXPECT_EQ(found("…"), "");
  EXPECT_EQ(found("… !"), "");
  EXPECT_EQ(found("subject:…"), "");
}

TEST_F(SearchTest, NothingInAQueryMeansAnythingToTheIndex) {
  for (const char* query : {"weaves\"^\"", "engine'", "engine;", "\"engine AND\"", "body:NEAR(x)",
                            "{engine}", "engine+weaves", "\"a\" \"\"b", "word:x", "rank:1",
                            "-- engine", "%", "?1", "caf\xE9", "'; DROP TABLE message; --"}) {
    SCOPED_TRACE(query);
    try {
      found(query);
    } catch (const QueryFault&) {
    }
  }
  EXPECT_EQ(found("*"), "reply engine budget undated");
  const std::string query("engine\0weaves", 13);
  EXPECT_EQ(found(query), "engine") << "it separates words";
}

TEST_F(SearchTest, ComparisonsLookAtTheAttributes) {
  struct Case {
    const char *query, *found;
  };
  for (auto [query, expected] :
       {Case{"kMDItemSubject == \"weaves\"", "undated"},
        {"kMDItemSubject == \"Weaves\"", ""},
        {"kMDItemSubject == \"Weaves\"c", "undated"},
        {"kMDItemSubject == \"the*\"c", "engine"},
        {"kMDItemSubject == \"creme*\"cd", "budget"},
        {"kMDItemSubject == \"creme*\"c", ""},
        {"kMDItemSubject == \"engine\"cw", "reply engine"},
        {"kMDItemSubject != \"*engine\"c", "budget undated"},
        {"kMDItemAuthors == \"Ada Lovelace\"", "engine"},
        {"kMDItemAuthors == \"Ada*\" || kMDItemAuthors == \"*Babbage\"", "reply engine"},
        {"kMDItemAuthors == \"*\"", "reply engine budget"},
        {"!kMDItemAuthors == \"*\"", "undated"},
        {"kMDItemTextContent == \"weaves\"", "reply engine"},
        {"kMDItemTextContent == \"alg*\"", "engine"},
        {"kMDItemTextContent == \"*braic\"", "engine"},
        {"* == \"*lovelace\"cd", "engine"},
        {"kMDItemContentCreationDate >= $time.today", "reply"},
        {"kMDItemContentCreationDate < $time.today(-30)", "budget"},
        {"kMDItemContentCreationDate > $time.now(-3600)", "reply"},
        {"InRange(kMDItemContentCreationDate, $time.yesterday, $time.today)", "engine"},
        {"kMDItemContentCreationDate == $time.iso(2024-05-17T13:30:00Z)", "reply"},
        {"kMDItemContentCreationDate > 0", "reply engine budget"},
        {"com_apple_mail_dateSent > $time.this_month", "reply engine"},
        {"com_apple_mail_read == 1", "engine"},
        {"com_apple_mail_read == false", "reply"},
        {"com_apple_mail_read != 1", "reply budget undated"},
        {"com_apple_mail_read == \"1\" && kMDItemSubject == \"*\"", "engine"},
        {"kMDItemFSName == \"budget.eml\"", "budget"},
        {"kMDItemPath == \"/mail/inbox/*\"", "reply"},
        {"kMDItemSubject == \"weaves\" && kMDItemTextContent == \"engine\"", "undated"},
        {"kMDItemSubject > 5", ""},
        {"org_example_nothing == 1", ""}}) {
    SCOPED_TRACE(query);
    EXPECT_EQ(found(query), expected);
  }
}

TEST_F(SearchTest, TheOrderIsTheOneAskedFor) {
  using Order = SearchSettings::Order;
  EXPECT_EQ(found("*", {.isReversed = true}), "undated budget engine reply");
  EXPECT_EQ(found("*", {.order = Order::Path}), "engine reply budget undated");
  EXPECT_EQ(found("*", {.order = Order::Path, .isReversed = true}), "undated budget reply engine");
  EXPECT_EQ(found("weaves", {.order = Order::Rank}).substr(0, 7), "undated") << "in the subject";
  EXPECT_EQ(found("is:read", {.order = Order::Rank}), "engine") << "without words by date";
}

TEST(Search, OfMoreThanFiveThousandTheNewestAreRanked) {
  std::vector<TestMail> mails;
  for (int i = 0; i < 5'001; ++i)
    mails.push_back({.path = "/m/" + std::to_string(i), .body = "loom", .date = 1000. + i});
  mails[0].subject = mails[7].subject = "loom";
  const MailStore store(mails);
  const auto reader = store.reader();
  const auto found = [&](SearchSettings settings) {
    std::vector<std::string> paths;
    Search search(*reader, parseQuery("loom"), std::move(settings));
    EXPECT_TRUE(
        search.runPaths([&](auto path) { return paths.emplace_back(path), true; }, nullptr));
    return paths;
  };
  using Order = SearchSettings::Order;
  using Paths = std::vector<std::string>;
  EXPECT_EQ(found({.order = Order::Rank, .limit = 2}), (Paths{"/m/7", "/m/5000"}));
  EXPECT_EQ(found({.order = Order::Rank, .limit = 2, .offset = 4'999}), (Paths{"/m/1", "/m/0"}));
  EXPECT_EQ(found({.order = Order::Rank, .isReversed = true, .limit = 2}), (Paths{"/m/0", "/m/1"}));
  const Paths all = found({.order = Order::Rank});
  ASSERT_EQ(all.size(), 5'001u);
  EXPECT_EQ(all.front(), "/m/7");
  EXPECT_EQ(all.back(), "/m/0");
}

TEST_F(SearchTest, PathsComeInTheSameOrderAsIds) {
  for (const char* query : {"*", "weaves", "is:read", "w*", "-weaves"})
    for (const auto order :
         {SearchSettings::Order::Date, SearchSettings::Order::Rank, SearchSettings::Order::Path})
      for (const bool isReversed : {false, true})
        for (const auto limit : {std::optional<std::uint64_t>(2), std::optional<std::uint64_t>()}) {
          std::vector<std::string> paths, pathsOfIds;
          Search search(*_reader, parseQuery(query),
                        {.order = order, .isReversed = isReversed, .limit = limit});
          const auto take = [&](auto path) { return paths.emplace_back(path), true; };
          EXPECT_TRUE(search.runPaths(take, nullptr));
          const auto takeId = [&](std::int64_t id) {
            return pathsOfIds.push_back(search.path(id, nullptr).value()), true;
          };
          EXPECT_TRUE(search.run(takeId, nullptr));
          EXPECT_EQ(paths, pathsOfIds) << query;
        }
}

TEST_F(SearchTest, PagesAreCutFromTheWhole) {
  EXPECT_EQ(found("*", {.limit = 2}), "reply engine");
  EXPECT_EQ(found("*", {.limit = 2, .offset = 1}), "engine budget");
  EXPECT_EQ(found("*", {.limit = 0}), "");
  EXPECT_EQ(found("*", {.offset = 9}), "");
  EXPECT_EQ(found("*", {.limit = UINT64_MAX, .offset = UINT64_MAX}), "");
}

TEST_F(SearchTest, OnlyTheFoldersThatWereNamedAreLookedIn) {
  EXPECT_EQ(found("*", {.folders = {"/mail/inbox"}}), "reply") << "inbox2 is another one";
  EXPECT_EQ(found("*", {.folders = {"/mail/inbox/", "/mail/inbox2"}}), "reply budget");
  EXPECT_EQ(found("weaves", {.folders = {"/"}}), "reply engine undated");
  EXPECT_EQ(found("weaves", {.folders = {"/mail/inbox/reply.eml"}}), "reply");
  EXPECT_EQ(found("weaves", {.folders = {"/nowhere"}}), "");
}

TEST_F(SearchTest, TheCountIsThatOfTheList) {
  EXPECT_EQ(search("weaves").count(nullptr), 3u);
  EXPECT_EQ(search("weaves is:read").count(nullptr), 1u);
  EXPECT_EQ(search("-weaves").count(nullptr), 1u);
  EXPECT_EQ(search("nowhere").count(nullptr), 0u);
  EXPECT_EQ(Search(*_reader, parseQuery("weaves"), {.limit = 2}).count(nullptr), 2u);
  EXPECT_EQ(Search(*_reader, parseQuery("weaves"), {.offset = 2}).count(nullptr), 1u);
  EXPECT_EQ(Search(*_reader, parseQuery("weaves"), {.folders = {"/mail/inbox"}}).count(nullptr),
            1u);
}

TEST_F(SearchTest, TheCallerMayStopAndAskAgain) {
  Search weaves = search("weaves");
  int count = 0;
  EXPECT_TRUE(weaves.run([&](std::int64_t) { return ++count < 2; }, nullptr));
  EXPECT_EQ(count, 2);
  EXPECT_TRUE(weaves.run([&](std::int64_t) { return ++count < 99; }, nullptr));
  EXPECT_EQ(count, 5);
}

TEST_F(SearchTest, WhatIsAddedDuringARunIsFoundByTheNext) {
  Search weaves = search("weaves");
  int count = 0;
  const auto add = [&](std::int64_t) {
    if (count++ == 0) _store.add({{.path = "/mail/new.eml", .subject = "weaves"}});
    return true;
  };
  EXPECT_TRUE(weaves.run(add, nullptr));
  EXPECT_EQ(count, 3);
  EXPECT_EQ(weaves.count(nullptr), 4u);
}

TEST_F(SearchTest, SnippetsMarkTheWords) {
  const auto snippetOf = [&](std::string_view query, std::string_view path) {
    Search found = search(query);
    const auto id = _reader->idOfPath(path, nullptr);
    const auto snippet = found.snippet(id.value_or(-1), nullptr);
    if (!snippet) return std::string("none");
    std::string line = snippet->text;
    for (auto mark = snippet->marks.rbegin(); mark != snippet->marks.rend(); ++mark)
      line.insert(mark->second, "]").insert(mark->first, "[");
    return line;
  };
  EXPECT_EQ(snippetOf("patterns", "/mail/engine.eml"),
            "Dear Charles, the engine weaves algebraic [patterns].");
  EXPECT_EQ(snippetOf("cafe", "/mail/inbox2/budget.eml"), "A [café] bill. It says \"paid\".");
  EXPECT_EQ(snippetOf("is:unread", "/mail/inbox/reply.eml"), "It weaves nothing yet.");
  EXPECT_EQ(snippetOf("weaves OR is:unread", "/mail/inbox/reply.eml"), "It [weaves] nothing yet.");
  EXPECT_EQ(snippetOf("weaves", "/nowhere"), "none");
}

TEST_F(SearchTest, AMessageHasWhatAListShows) {
  Search any = search("*");
  const auto message = any.message(*_reader->idOfPath("/mail/engine.eml", nullptr), nullptr);
  ASSERT_TRUE(message);
  EXPECT_EQ(message->path, "/mail/engine.eml");
  EXPECT_EQ(message->date, kNow - kDay);
  EXPECT_EQ(message->subject, "The Analytical Engine");
  EXPECT_EQ(message->sender, "Ada Lovelace <ada@example.org>");
  EXPECT_FALSE(any.message(9999, nullptr));
}

TEST_F(SearchTest, TheDeepestAndTheLongestQueriesRun) {
  std::string deep = "weaves";
  for (int depth = 0; depth + 2 < kDeepestQuery; depth += 2)
    deep = "-(" + deep + (depth % 4 ? " OR is:read x)" : " AND -y z OR charles)");
  try {
    found(deep);
  } catch (const QueryFault&) {
    ADD_FAILURE() << deep;
  }
  std::string words, columns;
  for (std::size_t i = 0; i < kMostTerms; ++i) {
    words += (i ? " OR w" : "w") + std::to_string(i);
    columns += (i ? (i % 2 ? " OR -is:" : " OR is:") : "is:") + std::string("junk");
  }
  EXPECT_EQ(found(words), "");
  EXPECT_EQ(found(columns), "reply engine budget undated");
}

}  // namespace
}  // namespace kbx
