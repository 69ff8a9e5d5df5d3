#include "platform/markup/MarkupText.h"

#include <gtest/gtest.h>

#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace std::string_view_literals;

std::string cleaned(std::string_view bytes) {
  auto input = data(bytes);
  const MarkupText markup = markupText(input);
  return std::string(markup.text);
}

std::string cleanedWithCharset(std::string_view charset, std::string_view bytes) {
  const std::string declaration = "<meta charset=" + std::string(charset) + ">";
  return cleaned(declaration + std::string(bytes)).substr(declaration.size());
}

TEST(MarkupText, TheCharsetIsFoundInThisOrder) {
  struct Case {
    const char* rule;
    std::string_view input;
    std::string_view output;
  };
  for (auto [rule, input, output] : {
           Case{"a mark of UTF-8", "\xEF\xBB\xBF\xC3\xA9", "é"},
           Case{"a mark of UTF-16, little end first", "\xFF\xFEx\0\xE9\0"sv, "xé"},
           Case{"a mark of UTF-16, big end first", "\xFE\xFF\0x\0\xE9"sv, "xé"},
           Case{"a mark of UTF-32", "\xFF\xFE\0\0\xE9\0\0\0"sv, "é"},
           Case{"a mark wins over everything", "\xEF\xBB\xBF<meta charset=koi8-r>\xC3(",
                "<meta charset=koi8-r>\uFFFD("},
           Case{"UTF-8 wins over what is declared", "<meta charset=koi8-r>\xC3\xA9",
                "<meta charset=koi8-r>é"},
           Case{"the XML declaration", "<?xml version='1.0' encoding='koi8-r'?>\xC1",
                "<?xml version='1.0' encoding='koi8-r'?>а"},
           Case{"the XML declaration before meta",
                "<?xml version='1.0' encoding='koi8-r'?><meta charset=iso-8859-2>\xC1",
                "<?xml version='1.0' encoding='koi8-r'?><meta charset=iso-8859-2>а"},
           Case{"meta with http-equiv",
                "<META HTTP-EQUIV=Content-Type CONTENT=\"text/html; CHARSET=windows-1251\">\xE0",
                "<META HTTP-EQUIV=Content-Type CONTENT=\"text/html; CHARSET=windows-1251\">а"},
           Case{"a charset that nobody knows is none",
                "<?xml version='1.0' encoding='x'?><meta charset=y><meta charset=koi8-r>\xC1",
                "<?xml version='1.0' encoding='x'?><meta charset=y><meta charset=koi8-r>а"},
           Case{"a meta in a comment does not count", "<!-- <meta charset=koi8-r> -->\xE9",
                "<!-- <meta charset=koi8-r> -->é"},
           Case{"else windows-1252", "\x80\xE9", "€é"},
       }) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(cleaned(input), output);
  }
}

TEST(MarkupText, ADeclaredCharsetIsTakenByTheNamesOfTheWeb) {
  struct Case {
    const char *charset, *bytes, *output;
  };
  for (auto [charset, bytes, output] : {
           Case{"iso-8859-1", "\x80", "€"},
           Case{"us-ascii", "\x93x\x94", "“x”"},
           Case{"ISO-8859-2", "\xB1", "ą"},
           Case{"iso-8859-9", "\xFD", "ı"},
           Case{"'windows-1251'", "\xE0", "а"},
           Case{"koi8-r", "\xC1", "а"},
           Case{"gb2312", "\xC4\xE3", "你"},
           Case{"big5", "\xA7\x41", "你"},
           Case{"shift_jis", "\x82\xA0", "あ"},
           Case{"euc-jp", "\xA4\xA2", "あ"},
           Case{"euc-kr", "\xB0\xA1", "가"},
           Case{"utf-8", "\xE9t", "\uFFFDt"},
           Case{"utf-16", "\xE9", "é"},
           Case{"utf-7", "+AOk-\xE9", "+AOk-é"},
           Case{"nobody-knows", "\xE9", "é"},
       }) {
    SCOPED_TRACE(charset);
    EXPECT_EQ(cleanedWithCharset(charset, bytes), output);
  }
}

TEST(MarkupText, ISO2022JPCountsWhereAnEscapeOccurs) {
  EXPECT_EQ(cleanedWithCharset("iso-2022-jp", "\x1B$B$\"\x1B(B!"), "あ!");
  EXPECT_EQ(cleanedWithCharset("iso-2022-jp", "plain"), "plain");
  EXPECT_EQ(cleanedWithCharset("iso-2022-jp", "\xE9"), "é");
  EXPECT_EQ(cleaned("\x1B$B$\"\x1B(B!"), "$B$\"(B!") << "not declared";
}

TEST(MarkupText, ADeclarationCountsWithinTheFirst8KBOnly) {
  const std::string declaration = "<meta charset=koi8-r>";
  const std::string near(8192 - declaration.size(), ' ');
  const std::string far(8192, ' ');
  EXPECT_TRUE(cleaned(near + declaration + "\xC1").ends_with(">а"));
  EXPECT_TRUE(cleaned(far + declaration + "\xC1").ends_with(">Á"));
}

TEST(MarkupText, CharactersThatNoTextKeepsAreLeftOutOrReplaced) {
  struct Case {
    const char* rule;
    std::string_view input;
    std::string_view output;
  };
  for (auto [rule, input, output] : {
           Case{"NUL", "a\0b"sv, "ab"},
           Case{"control characters",
                "a\x01\x08\x0B\x1F\x7F"
                "b",
                "ab"},
           Case{"control characters beyond ASCII", "a\u0085\u009F é", "a é"},
           Case{"tab and line feed stay", "a\tb\nc", "a\tb\nc"},
           Case{"a form feed is a blank", "a\fb", "a b"},
           Case{"line ends become line feeds", "a\r\nb\rc\r\r\nd", "a\nb\nc\n\nd"},
           Case{"non-characters", "é\uFDD0\uFFFE\U0001FFFF", "é\uFFFD\uFFFD\uFFFD"},
           Case{"a byte that is never in UTF-8", "\xEF\xBB\xBF\xFFx", "\uFFFDx"},
           Case{"an overlong form", "\xEF\xBB\xBF\xC0\xAF", "\uFFFD\uFFFD"},
           Case{"a surrogate", "\xEF\xBB\xBF\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
           Case{"a sequence that is cut", "\xEF\xBB\xBF\xE2\x82", "\uFFFD"},
           Case{"a lone surrogate of UTF-16", "\xFF\xFE\x00\xD8x\0"sv, "\uFFFDx"},
       }) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(cleaned(input), output);
  }
}

TEST(MarkupText, SurrogatePairsSurviveTheConvertersPieces) {
  for (std::size_t length = 4090; length < 4100; ++length) {
    std::string bytes = "\xFF\xFE";
    for (std::size_t i = 0; i < length; ++i) bytes += std::string("x\0", 2);
    bytes += "\x3D\xD8\x00\xDE"sv;
    EXPECT_EQ(cleaned(bytes), std::string(length, 'x') + "😀");
  }
}

TEST(MarkupText, CleanBytesAreNotCopied) {
  auto input = data("<p>Grüße\n\t</p>");
  EXPECT_EQ(markupText(input).text.data(), input->view().data());
  auto odd = data("<p>\r</p>");
  EXPECT_NE(markupText(odd).text.data(), odd->view().data());
}

TEST(MarkupText, EveryPlaceOfAnOddByteIsSeen) {
  for (std::size_t place = 0; place < 40; ++place) {
    std::string bytes(40, 'x');
    bytes[place] = '\x02';
    EXPECT_EQ(cleaned(bytes), std::string(39, 'x')) << place;
  }
}

}  // namespace
}  // namespace kbx
