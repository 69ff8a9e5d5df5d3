#include "host/search/Spelling.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace kbx {
namespace {

constexpr std::array<std::string_view, 4> kKnown{"from", "subject", "to", "attachment"};

TEST(Spelling, OneSlipIsNearInShortWordsAndTwoInLongOnes) {
  struct Case {
    const char *rule, *word, *nearest;
  };
  for (auto [rule, word, nearest] : {Case{"a changed letter", "frim", "from"},
                                     {"a letter too many", "fromm", "from"},
                                     {"a letter missing", "subjct", "subject"},
                                     {"two letters that changed places", "form", "from"},
                                     {"case does not count", "SUBJECT", "subject"},
                                     {"two slips in a long word", "atachmant", "attachment"},
                                     {"two slips in a short word", "frrn", ""},
                                     {"nothing is left of a short one", "x", ""},
                                     {"unlike everything", "kilometre", ""},
                                     {"empty", "", ""}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(nearestWord(word, kKnown), nearest);
  }
}

TEST(Spelling, TheNearestOfSeveralWins) {
  constexpr std::array<std::string_view, 2> known{"unread", "read"};
  EXPECT_EQ(nearestWord("unred", known), "unread");
  EXPECT_EQ(nearestWord("reed", known), "read");
}

TEST(Spelling, AWordBeyondReasonIsNotCompared) {
  EXPECT_EQ(nearestWord(std::string(1 << 20, 'f'), kKnown), "");
}

}  // namespace
}  // namespace kbx
