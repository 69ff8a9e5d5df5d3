#include "host/quick/QuickArguments.h"

#include <gtest/gtest.h>

namespace kbx {
namespace {

using Words = std::vector<const char*>;
using Order = SearchSettings::Order;

TEST(QuickArguments, WordsBecomeOneQuery) {
  const auto read = quickArguments(Words{"budget", "-draft", "from:ada", "\"two words\""});
  ASSERT_TRUE(read);
  EXPECT_EQ(read->query, "budget -draft from:ada \"two words\"");
  EXPECT_EQ(read->database, "");
  EXPECT_EQ(read->end, '\n');
  EXPECT_FALSE(read->isCount);
  EXPECT_FALSE(read->settings.limit);
}

TEST(QuickArguments, OptionsOfPlainSearchesAreKnown) {
  const auto read = quickArguments(Words{"--db", "/t/ü.db", "--limit", "12", "-0", "--offset", "3",
                                         "--sort", "rank", "--reverse", "word"});
  ASSERT_TRUE(read);
  EXPECT_EQ(read->query, "word");
  EXPECT_EQ(read->database, "/t/ü.db");
  EXPECT_EQ(read->settings.limit, 12u);
  EXPECT_EQ(read->settings.offset, 3u);
  EXPECT_EQ(read->settings.order, Order::Rank);
  EXPECT_TRUE(read->settings.isReversed);
  EXPECT_EQ(read->end, '\0');
  EXPECT_TRUE(quickArguments(Words{"--count", "word"})->isCount);
  EXPECT_FALSE(quickArguments(Words{"--limit", "0", "word"})->settings.limit) << "0 is all";
}

TEST(QuickArguments, EverythingElseIsTheHosts) {
  struct Case {
    const char* rule;
    Words words;
  };
  for (const auto& [rule, words] :
       {Case{"no query", {}},
        Case{"no query but options", {"--count"}},
        Case{"an empty word", {""}},
        Case{"characters beyond ASCII", {"café"}},
        Case{"control characters", {"a\x01"}},
        Case{"help", {"-h"}},
        Case{"help, long", {"word", "--help"}},
        Case{"objects", {"--json", "word"}},
        Case{"a folder", {"--onlyin", "/mail", "word"}},
        Case{"a name", {"--name", "kMDItemSubject", "word"}},
        Case{"passages", {"--snippet", "word"}},
        Case{"to go on", {"--live", "word"}},
        Case{"the end of options", {"--", "word"}},
        Case{"a value with an equals sign", {"--limit=3", "word"}},
        Case{"a value that is missing", {"word", "--limit"}},
        Case{"a value that looks like an option", {"--db", "--count", "word"}},
        Case{"an empty value", {"--db", "", "word"}},
        Case{"no number", {"--limit", "x", "word"}},
        Case{"a number of another base", {"--limit", "010", "word"}},
        Case{"a number with a sign", {"--offset", "+1", "word"}},
        Case{"too large a number", {"--limit", "99999999999999999999", "word"}},
        Case{"an unknown order", {"--sort", "size", "word"}},
        Case{"an option twice", {"--limit", "1", "--limit", "2", "word"}},
        Case{"what excludes each other", {"-0", "--count", "word"}}})
    EXPECT_FALSE(quickArguments(words)) << rule;
}

}  // namespace
}  // namespace kbx
