#include "host/search/SnippetText.h"

#include <gtest/gtest.h>

#include <string>

namespace kbx {
namespace {

using Marks = std::vector<std::pair<std::size_t, std::size_t>>;

TEST(SnippetText, MarksBecomePlaces) {
  const std::string passage = "a " + std::string(kSnippetBegin) + "word" +
                              std::string(kSnippetEnd) + " " + std::string(kSnippetBegin) + "é" +
                              std::string(kSnippetEnd);
  const Snippet snippet = snippetOf(passage);
  EXPECT_EQ(snippet.text, "a word é");
  EXPECT_EQ(snippet.marks, (Marks{{2, 6}, {7, 9}}));
}

TEST(SnippetText, BlanksBecomeOne) {
  EXPECT_EQ(snippetOf("  a\r\n\r\n\tb\u00A0\u2028c").text, "a b c");
}

TEST(SnippetText, StrayMarksDoNoHarm) {
  const std::string begin(kSnippetBegin), end(kSnippetEnd);
  EXPECT_EQ(snippetOf(end + "a" + end).marks, Marks());
  EXPECT_EQ(snippetOf(begin + begin + "a").marks, (Marks{{0, 1}}));
}

TEST(SnippetText, ABeginningEndsBehindAWordAndNotWithinACharacter) {
  EXPECT_EQ(beginningOf("short", false).text, "short");
  EXPECT_EQ(beginningOf("short", true).text, "short…");
  std::string words, wide;
  for (int i = 0; i < 100; ++i) {
    words += "word ";
    wide += "会";
  }
  EXPECT_TRUE(beginningOf(words, false).text.ends_with("word…"));
  const std::string cut = beginningOf(wide, false).text;
  EXPECT_EQ((cut.size() - std::string("…").size()) % 3, 0u);
  EXPECT_LT(cut.size(), 200u);
}

}  // namespace
}  // namespace kbx
