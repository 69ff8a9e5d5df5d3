#include "host/search/QueryFault.h"

#include <gtest/gtest.h>

#include <string>

namespace kbx {
namespace {

TEST(QueryFault, TheCaretStandsUnderThePlace) {
  EXPECT_EQ(faultText("budget form:ada", {"no field", 7, 5, "budget from:ada"}),
            "ferncase: no field\n"
            "    budget form:ada\n"
            "           ^~~~~\n"
            "did you mean  budget from:ada\n");
}

TEST(QueryFault, TheCaretStandsUnderThePlaceBehindAnyText) {
  struct Case {
    const char *rule, *before;
    std::size_t columns;
  };
  for (auto [rule, before, columns] : {Case{"narrow letters", "für ", 4},
                                       {"wide characters", "会議 ", 5},
                                       {"wide forms of letters", "Ａ ", 3},
                                       {"combining marks", "u\u0308 ", 2},
                                       {"a joined syllable", "\u1112\u1161\u11ab ", 3},
                                       {"an emoji", "📎 ", 3},
                                       {"bytes that are no text", "\xE9 ", 5},
                                       {"a tab", "\t ", 3},
                                       {"text that turns around", "\u202E ", 7}}) {
    SCOPED_TRACE(rule);
    const std::string query = std::string(before) + "x";
    const std::string text = faultText(query, {"wrong", std::string(before).size(), 1});
    const std::string caretLine = text.substr(text.rfind("\n", text.size() - 2) + 1);
    EXPECT_EQ(caretLine, std::string(4 + columns, ' ') + "^\n") << text;
  }
}

TEST(QueryFault, APlaceOfWideCharactersIsUnderlinedWhole) {
  EXPECT_EQ(faultText("会議:x", {"no field", 0, 6}), "ferncase: no field\n    会議:x\n    ^~~~\n");
}

TEST(QueryFault, APlaceAtTheEndIsBehindTheText) {
  EXPECT_EQ(faultText("from:", {"a value is missing", 5, 0}),
            "ferncase: a value is missing\n    from:\n         ^\n");
}

TEST(QueryFault, ALongQueryIsShownAroundThePlace) {
  const std::string query(5000, 'a');
  const std::string text = faultText(query, {"wrong", 2500, 1, query});
  EXPECT_LT(text.size(), 500u);
  EXPECT_NE(text.find("…a"), std::string::npos);
  EXPECT_NE(text.find("a…\n"), std::string::npos);
}

TEST(QueryFault, ALongQueryIsNotCutWithinACharacter) {
  std::string query;
  for (int i = 0; i < 200; ++i) query += "会";
  const std::string text = faultText(query, {"wrong", 300, 3});
  EXPECT_EQ(text.find("\\x"), std::string::npos) << text;
}

TEST(QueryFault, NothingInAQueryDrivesTheTerminal) {
  const std::string text = faultText("\x1B[31m\n:", {"\x1B", 6, 1, "\x1B"});
  EXPECT_EQ(text.find('\x1B'), std::string::npos);
  EXPECT_EQ(std::ranges::count(text, '\n'), 4);
}

TEST(QueryFault, APlaceBeyondTheQueryIsItsEnd) {
  EXPECT_EQ(faultText("ab", {"wrong", 9, 9}), "ferncase: wrong\n    ab\n      ^\n");
}

}  // namespace
}  // namespace kbx
