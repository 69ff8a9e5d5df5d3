#include "host/Escaping.h"

#include <gtest/gtest.h>

#include "tests/support/Text.h"

namespace kbx {
namespace {

std::string onOneLine(NSString* text) {
  StringOutput output;
  writeOnOneLine(output, text);
  return output.text();
}
std::string onOneLine(std::u16string_view units) {
  return onOneLine(NSString::stringWithUTF16(units));
}

TEST(Escaping, TextOfAnyLengthInUTF8StaysAsItIs) {
  for (std::string_view text : {"", "a", "plain \"text\"", "Grüße", "ab€", "😀", "日本語😀é"})
    EXPECT_EQ(onOneLine(string(text)), text);
  std::string longer;
  for (int i = 0; i < 3000; ++i) longer += "aé€😀";
  EXPECT_EQ(onOneLine(string(longer)), longer);
}

TEST(Escaping, NothingThatDrivesATerminalIsWritten) {
  struct Case {
    const char* what;
    std::u16string_view text;
    std::string_view escaped;
  };
  for (auto [what, text, escaped] : {Case{"escape sequence", u"\x1B[2J", "\\u001b[2J"},
                                     {"NUL", {u"\0", 1}, "\\u0000"},
                                     {"line feed", u"a\nb", "a\\nb"},
                                     {"return", u"a\rb", "a\\rb"},
                                     {"tab", u"a\tb", "a\\tb"},
                                     {"backspace", u"a\bb", "a\\u0008b"},
                                     {"delete", u"\x7F", "\\u007f"},
                                     {"control sequence of eight bits",
                                      u"\x9B"
                                      u"31m",
                                      "\\u009b31m"},
                                     {"next line", u"\x85", "\\u0085"},
                                     {"a no-break space is harmless", u"\xA0", "\u00A0"},
                                     {"right to left override", u"\u202Egnp.exe", "\\u202egnp.exe"},
                                     {"left to right mark", u"\u200E", "\\u200e"},
                                     {"Arabic letter mark", u"\u061C", "\\u061c"},
                                     {"isolate", u"\u2066x\u2069", "\\u2066x\\u2069"},
                                     {"line separator", u"a\u2028b", "a\\u2028b"},
                                     {"paragraph separator", u"a\u2029b", "a\\u2029b"},
                                     {"byte-order mark", u"\uFEFF", "\\ufeff"},
                                     {"a joiner is harmless", u"\u200D", "\u200D"},
                                     {"backslash", u"a\\n", "a\\\\n"}}) {
    SCOPED_TRACE(what);
    EXPECT_EQ(onOneLine(text), escaped);
    EXPECT_EQ(onOneLine(std::u16string(text) + u"€"), std::string(escaped) + "€");
  }
}

TEST(Escaping, LoneSurrogatesAreEscapedAndPairsAreNot) {
  EXPECT_EQ(onOneLine(u"\xD83D"), "\\ud83d");
  EXPECT_EQ(onOneLine(u"\xD83Dx"), "\\ud83dx");
  EXPECT_EQ(onOneLine(u"\xDE00\xD83D\xDE00"), "\\ude00😀");
  EXPECT_EQ(onOneLine(u"\xD83D\xD83D\xDE00"), "\\ud83d😀");
}

TEST(Escaping, PathsStayOnTheirLine) {
  struct Case {
    std::string_view path, shown;
  };
  for (auto [path, shown] : {Case{"a/b c.eml", "a/b c.eml"},
                             {"Grüße", "Grüße"},
                             {"a\nferncase: b", "a\\nferncase: b"},
                             {"\x1B[31m", "\\u001b[31m"},
                             {"caf\xE9", "caf\\xe9"},
                             {"\xFF\xFE", "\\xff\\xfe"},
                             {"\xC2\x9B", "\\u009b"},
                             {"a\\xe9", "a\\\\xe9"}})
    EXPECT_EQ(shownPath(path), shown);
}

}  // namespace
}  // namespace kbx
