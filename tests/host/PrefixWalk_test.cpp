#include "host/search/PrefixWalk.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/MailStore.h"

namespace kbx {
namespace {

using Order = SearchSettings::Order;
using Ids = std::vector<std::int64_t>;

bool isFor(std::string_view query, SearchSettings settings = {.limit = 10}) {
  return PrefixWalk::isFor(parseQuery(query), settings);
}

TEST(PrefixWalk, IsForAPageOfOneShortBeginning) {
  EXPECT_TRUE(isFor("a*"));
  EXPECT_TRUE(isFor("the*"));
  EXPECT_TRUE(isFor("subject:re*"));
  EXPECT_TRUE(isFor("É*"));
  EXPECT_FALSE(isFor("a")) << "a whole word";
  EXPECT_FALSE(isFor("then*")) << "of few words";
  EXPECT_FALSE(isFor("a* b")) << "of two terms";
  EXPECT_FALSE(isFor("-a*"));
  EXPECT_FALSE(isFor("\"b a\"*")) << "a phrase";
  EXPECT_FALSE(isFor("&*")) << "no word";
  EXPECT_FALSE(isFor("a*", {})) << "everything is wanted";
  EXPECT_FALSE(isFor("a*", {.limit = 100000}));
  EXPECT_FALSE(isFor("a*", {.limit = 1, .offset = 100000}));
  EXPECT_FALSE(isFor("a*", {.folders = {"/mail"}, .limit = 10}));
}

/// Messages of which most have a word with a, and few one with q.
class PrefixWalkTest : public testing::Test {
 protected:
  static std::vector<TestMail> mails() {
    std::mt19937 random(1);
    const std::vector<std::string> words{"an",  "Émile", "apple",  "e-book", "tea",
                                         "Thé", "there", "東京都", "n'aime", "x1",
                                         "3rd", "Øre",   "zebra",  "is",     "of"};
    std::vector<TestMail> mails;
    for (int i = 0; i < 300; ++i) {
      TestMail mail{.path = "/mail/" + std::to_string(random() % 1'000'000)};
      for (int count = 0; count < 6; ++count) mail.body += words[random() % words.size()] + " ";
      if (random() % 2) mail.subject = words[random() % words.size()];
      if (random() % 10) mail.date = static_cast<double>(random() % 100'000);
      if (i % 50 == 7) mail.body += "quince";
      mails.push_back(mail);
    }
    return mails;
  }

  Ids found(const std::string& query, SearchSettings settings) {
    Ids ids;
    Search search(*_reader, parseQuery(query), settings);
    EXPECT_TRUE(search.run([&](auto id) { return ids.push_back(id), true; }, nullptr));
    return ids;
  }

  MailStore _store{mails()};
  std::unique_ptr<StoreReader> _reader = _store.reader();
};

TEST_F(PrefixWalkTest, APageIsCutFromWhatTheIndexFinds) {
  for (const char* query : {"a*", "e*", "ém*", "t*", "the*", "東*", "東京*", "n*", "x*", "3*", "o*",
                            "q*", "zz*", "subject:a*", "body:t*", "bo*", "from:a*"})
    for (const Order order : {Order::Date, Order::Path})
      for (const bool isReversed : {false, true})
        for (const std::uint64_t offset : {0, 5, 299}) {
          SCOPED_TRACE(query);
          Ids all = found(query, {.order = order, .isReversed = isReversed});
          all.erase(all.begin(), all.begin() + std::min<std::ptrdiff_t>(offset, std::ssize(all)));
          all.resize(std::min<std::size_t>(all.size(), 20));
          EXPECT_EQ(
              found(query,
                    {.order = order, .isReversed = isReversed, .limit = 20, .offset = offset}),
              all);
        }
}

TEST_F(PrefixWalkTest, WhatFewMessagesHaveIsLeftToTheIndex) {
  const auto page = [&](std::string_view text, SearchSettings settings = {.limit = 40}) {
    const QueryNode query = parseQuery(text);
    return PrefixWalk(_reader->database(), query, settings).page();
  };
  EXPECT_TRUE(page("a*"));
  EXPECT_TRUE(page("t*"));
  EXPECT_FALSE(page("q*"));
  EXPECT_FALSE(page("from:a*"));
}

TEST_F(PrefixWalkTest, WhatMostMessagesHaveRanksNone) {
  EXPECT_EQ(found("t*", {.order = Order::Rank, .limit = 20}), found("t*", {.limit = 20}));
}

}  // namespace
}  // namespace kbx
