#include "platform/text/CharsetConverter.h"

#include <gtest/gtest.h>

namespace kbx {
namespace {

TEST(CharsetConverter, AnUnknownCharsetConvertsNothing) {
  EXPECT_FALSE(decodeCharset("a", "x-unknown", true));
  EXPECT_FALSE(encodeCharset(u"a", "x-unknown", true));
}

TEST(CharsetConverter, MalformedBytesAreReplacedOrRefused) {
  EXPECT_EQ(decodeCharset("a\xFF", "EUC-JP", true), u"a\uFFFD");
  EXPECT_FALSE(decodeCharset("a\xFF", "EUC-JP", false));
  EXPECT_FALSE(decodeCharset("a\x8E", "EUC-JP", false)) << "cut in the middle of a character";
}

TEST(CharsetConverter, TextLongerThanAPieceComesWhole) {
  std::string bytes;
  std::u16string units;
  for (int i = 0; i < 10000; ++i) bytes += "\xC6\xFC", units += u'日';
  EXPECT_EQ(decodeCharset(bytes, "EUC-JP", false), units);
  EXPECT_EQ(encodeCharset(units, "EUC-JP", false), bytes);
}

TEST(CharsetConverter, ACharacterThatTheCharsetLacksIsRefused) {
  EXPECT_FALSE(encodeCharset(u"aЖ", "ISO-8859-7", false));
  EXPECT_FALSE(encodeCharset(std::u16string{u'a', 0xD800}, "KOI8-R", false));
}

TEST(CharsetConverter, AnIgnorableCharacterIsRefusedAsWell) {
  for (char16_t unit : {u'\u00AD', u'\u200D', u'\u2060', u'\uFE0F'})
    EXPECT_FALSE(encodeCharset(std::u16string{u'a', unit}, "IBM866", false)) << int{unit};
}

TEST(CharsetConverter, LossyTextKeepsItsPlainLetters) {
  EXPECT_EQ(encodeCharset(u"Ж é ő 日 😀!", "KOI8-R", true), "\xF6 e o ? ?!");
  EXPECT_EQ(encodeCharset(std::u16string{u'a', 0xD800, u'b'}, "KOI8-R", true), "a?b");
}

TEST(CharsetConverter, AnApproximationIsPlainASCIIOrAQuestionMark) {
  struct Case {
    char32_t character;
    const char* ascii;
  };
  for (auto [character, ascii] : {Case{U'é', "e"},
                                  {U'Ǖ', "U"},
                                  {U'ﬁ', "fi"},
                                  {U'Ａ', "A"},
                                  {U'…', "..."},
                                  {U'½', "?"},
                                  {U'ß', "?"},
                                  {U'日', "?"},
                                  {U'가', "?"},
                                  {U'\u0301', ""},
                                  {U'\uFDFA', "?"},
                                  {U'😀', "?"},
                                  {0xD800, "?"}})
    EXPECT_EQ(asciiApproximation(character), ascii) << std::hex << std::uint32_t{character};
}

}  // namespace
}  // namespace kbx
