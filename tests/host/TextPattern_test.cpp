#include "host/search/TextPattern.h"

#include <gtest/gtest.h>

#include "tests/support/Text.h"

namespace kbx {
namespace {

struct Case {
  const char *rule, *pattern, *text;
  bool matches;
};

void check(PatternOptions options, std::initializer_list<Case> cases) {
  for (const auto& [rule, pattern, text, matches] : cases) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(TextPattern(pattern, options).matches(std::string_view(text)), matches);
    EXPECT_EQ(TextPattern(pattern, options).matches(string(text).get()), matches);
  }
}

TEST(TextPattern, WildcardsStandForOtherCharacters) {
  check({}, {{"the whole text", "plan", "plan", true},
             {"not a part of it", "plan", "plans", false},
             {"not another case", "plan", "Plan", false},
             {"a beginning", "plan*", "planet", true},
             {"nothing more", "plan*", "plan", true},
             {"an end", "*net", "planet", true},
             {"a middle", "*lane*", "planet", true},
             {"pieces in order", "p*n*t", "planet", true},
             {"pieces out of order", "n*p", "planet", false},
             {"a run that must be tried again", "*aab", "aaaab", true},
             {"one character", "pla?et", "planet", true},
             {"one that is not there", "planet?", "planet", false},
             {"one wide character", "?", "会", true},
             {"one character beyond the first plane", "?", "📎", true},
             {"a plain star", "a\\*b", "a*b", true},
             {"a plain star is none other", "a\\*b", "axb", false},
             {"a plain backslash", "a\\\\b", "a\\b", true},
             {"a backslash at the end", "a\\", "a\\", true},
             {"anything", "*", "", true},
             {"nothing", "", "", true},
             {"nothing but nothing", "", "a", false},
             {"composed and decomposed", "caf\u00e9", "cafe\u0301", true},
             {"marks count", "cafe", "caf\u00e9", false}});
}

TEST(TextPattern, CaseAndMarksAreIgnoredWhenAskedFor) {
  check({.ignoresCase = true}, {{"case", "PLAN*", "planet", true},
                                {"beyond ASCII", "ÄPFEL", "äpfel", true},
                                {"full folding", "STRASSE", "straße", true},
                                {"marks count", "CAFE", "café", false}});
  check({.ignoresMarks = true},
        {{"marks", "cafe*", "café au lait", true}, {"case counts", "Cafe", "café", false}});
  check({.ignoresCase = true, .ignoresMarks = true}, {{"both", "CREME*", "crème brûlée", true}});
}

TEST(TextPattern, WordsAreFoundAnywhere) {
  check({.ignoresCase = true, .isByWord = true},
        {{"a word", "paris", "I love Paris", true},
         {"before punctuation", "paris", "paris-france.jpg", true},
         {"not a part of one", "paris", "Comparison", false},
         {"a capital begins a word", "window", "MyWindowKit", true},
         {"two words in a row", "love paris", "I love  Paris!", true},
         {"two words apart", "i paris", "I love Paris", false},
         {"the beginning of a word", "par*", "I love Paris", true},
         {"no word at all", "…", "…", false},
         {"longer than the text", "a b c", "a b", false}});
}

TEST(TextPattern, AHardPatternEnds) {
  std::string pattern, text(20000, 'a');
  for (int i = 0; i < 100; ++i) pattern += "a*";
  EXPECT_FALSE(TextPattern(pattern + "b", {}).matches(text));
}

}  // namespace
}  // namespace kbx
