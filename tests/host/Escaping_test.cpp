#include "host/console/Escaping.h"

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
    // Long text comes in the form that is written.
    std::u16string longer;
    std::string longerEscaped;
    while (longer.size() < 3000) {
      longer.append(text).append(u"é");
      longerEscaped.append(escaped).append("é");
    }
    const Ref<NSString> kept = string(*NSString::stringWithUTF16(longer)->UTF8String());
    ASSERT_TRUE(kept->keptUTF8().has_value());
    EXPECT_EQ(onOneLine(longer), longerEscaped);
    EXPECT_EQ(onOneLine(kept), longerEscaped);
  }
}

TEST(Escaping, EveryCharacterIsWrittenTheSameInBothForms) {
  std::u16string all;
  for (char16_t unit = 0; unit < 0xFFFF; ++unit)
    if (unit < 0xD800 || unit > 0xDFFF) all += unit;
  all += u"\U00010000\U0001F600\U0010FFFF";
  const Ref<NSString> units = NSString::stringWithUTF16(all), kept = string(*units->UTF8String());
  ASSERT_TRUE(kept->keptUTF8() && !units->keptUTF8());
  EXPECT_EQ(onOneLine(kept), onOneLine(units));
}

TEST(Escaping, TheUnitBehindASpecialOneIsKnown) {
  constexpr SpecialCharacters special("");
  const std::u16string lines =
      u"\nx\n\u00E9\n\u96FB\n\U0001F600\n\n" + std::u16string(3000, u'\u00E9') + u"\n";
  const Ref<NSString> units = NSString::stringWithUTF16(lines);
  for (const auto& form : {units, string(*units->UTF8String())}) {
    StringOutput output;
    std::u16string behind;
    writeUTF8(output, form, special, [&](char16_t, char16_t next) { behind += next; });
    EXPECT_EQ(behind, (std::u16string{u'x', 0xE9, 0x96FB, 0xD83D, u'\n', 0xE9, 0}));
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
