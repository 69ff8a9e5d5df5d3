#include <gtest/gtest.h>

#include "platform/objects/NSData.h"
#include "platform/objects/NSString.h"
#include "platform/text/Charsets.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

Ref<NSString> units(std::u16string_view text) { return NSString::stringWithUTF16(text); }
NSStringEncoding encodingNamed(const char* charset) { return encodingOfCharset(charset); }

// The bytes come from another language's codecs.
struct Sample {
  const char* charset;
  const char* text;
  const char* bytes;
};
constexpr Sample kSamples[] = {
    {"US-ASCII", "Hi~", "Hi~"},
    {"UTF-8", "é日😀", "é日😀"},
    {"ISO-8859-1", "é\u0080ÿ", "\xE9\x80\xFF"},
    {"ISO-8859-2", "Łódź", "\xA3\xF3\x64\xBC"},
    {"ISO-8859-7", "Ω", "\xD9"},
    {"ISO-8859-8", "שלום", "\xF9\xEC\xE5\xED"},
    {"ISO-8859-15", "€œ", "\xA4\xBD"},
    {"windows-1251", "Ёж", "\xA8\xE6"},
    {"windows-1252", "“€”", "\x93\x80\x94"},
    {"windows-1253", "Ωμέγα", "\xD9\xEC\xDD\xE3\xE1"},
    {"windows-1254", "İığ", "\xDD\xFD\xF0"},
    {"windows-1255", "א", "\xE0"},
    {"windows-1256", "پ", "\x81"},
    {"windows-1257", "ž", "\xFE"},
    {"windows-1258", "ơ", "\xF5"},
    {"windows-874", "ไ", "\xE4"},
    {"macintosh", "Ωé€\uF8FF", "\xBD\x8E\xDB\xF0"},
    {"x-mac-cyrillic", "Ж", "\x86"},
    {"x-mac-turkish", "ğ", "\xDB"},
    {"x-mac-centraleurroman", "ł", "\xB8"},
    {"IBM850", "é½", "\x82\xAB"},
    {"IBM866", "Ж", "\x86"},
    {"KOI8-R", "Привет", "\xF0\xD2\xC9\xD7\xC5\xD4"},
    {"KOI8-U", "ї", "\xA7"},
    {"Shift_JIS", "日本ｶﾞ", "\x93\xFA\x96\x7B\xB6\xDE"},
    {"EUC-JP", "日本", "\xC6\xFC\xCB\xDC"},
    {"ISO-2022-JP", "日本a", "\x1B$BF|K\\\x1B(Ba"},
    {"GB2312", "中文", "\xD6\xD0\xCE\xC4"},
    {"GBK", "镕", "\xE9\x46"},
    {"GB18030", "😀é", "\x94\x39\xFC\x36\xA8\xA6"},
    {"HZ-GB-2312", "中a", "~{VP~}a"},
    {"Big5", "中文", "\xA4\xA4\xA4\xE5"},
    {"Big5-HKSCS", "嘅", "\x9D\xEF"},
    {"EUC-KR", "한글", "\xC7\xD1\xB1\xDB"},
    {"windows-949", "똠", "\x8C\x63"},
    {"IBM037", "AZ", "\xC1\xE9"},
};

TEST(NSStringEncoding, BytesBecomeTextAndTextBecomesBytes) {
  for (auto [charset, expected, bytes] : kSamples) {
    SCOPED_TRACE(charset);
    const NSStringEncoding encoding = encodingNamed(charset);
    EXPECT_EQ(text(NSString::initWithData(data(bytes), encoding)), expected);
    EXPECT_EQ(text(string(expected)->dataUsingEncoding(encoding)), bytes);
  }
}

TEST(NSStringEncoding, MacOSRomanHasACharacterForEveryByte) {
  // The second half of the charset, by another language's codec.
  const std::u16string upper =
      u"\u00C4\u00C5\u00C7\u00C9\u00D1\u00D6\u00DC\u00E1\u00E0\u00E2\u00E4\u00E3\u00E5\u00E7\u00E9"
      u"\u00E8\u00EA\u00EB\u00ED\u00EC\u00EE\u00EF\u00F1\u00F3\u00F2\u00F4\u00F6\u00F5\u00FA\u00F9"
      u"\u00FB\u00FC\u2020\u00B0\u00A2\u00A3\u00A7\u2022\u00B6\u00DF\u00AE\u00A9\u2122\u00B4\u00A8"
      u"\u2260\u00C6\u00D8\u221E\u00B1\u2264\u2265\u00A5\u00B5\u2202\u2211\u220F\u03C0\u222B\u00AA"
      u"\u00BA\u03A9\u00E6\u00F8\u00BF\u00A1\u00AC\u221A\u0192\u2248\u2206\u00AB\u00BB\u2026\u00A0"
      u"\u00C0\u00C3\u00D5\u0152\u0153\u2013\u2014\u201C\u201D\u2018\u2019\u00F7\u25CA\u00FF\u0178"
      u"\u2044\u20AC\u2039\u203A\uFB01\uFB02\u2021\u00B7\u201A\u201E\u2030\u00C2\u00CA\u00C1\u00CB"
      u"\u00C8\u00CD\u00CE\u00CF\u00CC\u00D3\u00D4\uF8FF\u00D2\u00DA\u00DB\u00D9\u0131\u02C6\u02DC"
      u"\u00AF\u02D8\u02D9\u02DA\u00B8\u02DD\u02DB\u02C7";
  std::string bytes;
  std::u16string all;
  for (int i = 0; i < 256; ++i) {
    bytes += static_cast<char>(i);
    all += i < 128 ? static_cast<char16_t>(i) : upper[static_cast<std::size_t>(i) - 128];
  }
  auto decoded = NSString::initWithData(NSData::dataWithBytes(bytes), NSMacOSRomanStringEncoding);
  EXPECT_TRUE(isEqual(decoded, units(all)));
  EXPECT_EQ(text(decoded->dataUsingEncoding(NSMacOSRomanStringEncoding)), bytes);
}

TEST(NSStringEncoding, MalformedBytesHaveNoText) {
  struct Case {
    const char* charset;
    std::string_view bytes;
  };
  for (auto [charset, bytes] : {Case{"US-ASCII", "a\x80"},
                                {"UTF-8", "a\xC3"},
                                {"UTF-8", "\xED\xA0\x80"},
                                {"UTF-8", "\xC0\x80"},
                                {"UTF-16", "a"},
                                {"UTF-16LE", "abc"},
                                {"UTF-32LE", "\0\xD8\0\0"sv},
                                {"UTF-32", "abc"},
                                {"Shift_JIS", "\x81"},
                                {"EUC-JP", "\xFF"},
                                {"GB18030", "\xFF"},
                                {"windows-1253", "\xFF"}}) {
    SCOPED_TRACE(charset);
    EXPECT_EQ(NSString::initWithData(data(bytes), encodingNamed(charset)), nullptr);
  }
}

TEST(NSStringEncoding, AbsentBytesHaveNoText) {
  EXPECT_EQ(NSString::initWithData(nullptr, NSUTF8StringEncoding), nullptr);
}

TEST(NSStringEncoding, AnUnknownEncodingConvertsNothing) {
  for (std::uint64_t number : {0ull, 2ull, 6ull, 12345ull, 0x80000999ull, ~0ull}) {
    const auto encoding = static_cast<NSStringEncoding>(number);
    EXPECT_EQ(NSString::initWithData(data("a"), encoding), nullptr);
    EXPECT_EQ("a"_ns->dataUsingEncoding(encoding), nullptr);
    EXPECT_EQ("a"_ns->dataUsingEncoding(encoding, true), nullptr);
  }
}

TEST(NSStringEncoding, EveryEncodingRoundsAnEmptyAndAPlainText) {
  for (const Charset& charset : charsets()) {
    SCOPED_TRACE(charset.name);
    const auto encoding = static_cast<NSStringEncoding>(charset.encoding);
    for (const char* sample : {"", "Plain text, 1~2 + 3"}) {
      auto bytes = string(sample)->dataUsingEncoding(encoding);
      ASSERT_NE(bytes, nullptr);
      EXPECT_EQ(text(NSString::initWithData(bytes, encoding)), sample);
    }
  }
}

TEST(NSStringEncoding, AByteOrderMarkIsNoTextWhereItTellsTheOrder) {
  for (auto bytes : {"\xFF\xFE\xE9\0"sv, "\xFE\xFF\0\xE9"sv})
    EXPECT_EQ(text(NSString::initWithData(data(bytes), NSUnicodeStringEncoding)), "é");
  for (auto bytes : {"\xFF\xFE\0\0\xE9\0\0\0"sv, "\0\0\xFE\xFF\0\0\0\xE9"sv})
    EXPECT_EQ(text(NSString::initWithData(data(bytes), NSUTF32StringEncoding)), "é");
}

TEST(NSStringEncoding, AByteOrderMarkIsTextWhereTheOrderIsFixed) {
  EXPECT_TRUE(
      isEqual(NSString::initWithData(data("\xFF\xFE\xE9\0"sv), NSUTF16LittleEndianStringEncoding),
              units(u"\uFEFFé")));
  EXPECT_TRUE(
      isEqual(NSString::initWithData(data("\0\0\xFE\xFF"sv), NSUTF32BigEndianStringEncoding),
              units(u"\uFEFF")));
  EXPECT_TRUE(isEqual(NSString::initWithData(data("\xEF\xBB\xBF"), NSUTF8StringEncoding),
                      units(u"\uFEFF")));
}

TEST(NSStringEncoding, WithoutAMarkTheOrderIsThisMachines) {
  const char16_t unit = u'é';
  auto bytes = NSData::dataWithBytes(&unit, sizeof unit);
  EXPECT_EQ(text(NSString::initWithData(bytes, NSUnicodeStringEncoding)), "é");
}

TEST(NSStringEncoding, TheFormsWithoutAnOrderBeginWithAMark) {
  const char16_t marked[] = {0xFEFF, u'é'};
  EXPECT_EQ(text("é"_ns->dataUsingEncoding(NSUnicodeStringEncoding)),
            std::string(reinterpret_cast<const char*>(marked), sizeof marked));
  const char32_t marked32[] = {0xFEFF, U'é'};
  EXPECT_EQ(text("é"_ns->dataUsingEncoding(NSUTF32StringEncoding)),
            std::string(reinterpret_cast<const char*>(marked32), sizeof marked32));
}

TEST(NSStringEncoding, OnlyFormsOfUnitsKeepALoneSurrogate) {
  auto lone = units(std::u16string{u'a', 0xD83D});
  for (const Charset& charset : charsets()) {
    SCOPED_TRACE(charset.name);
    const std::string_view name = charset.name;
    const auto encoding = static_cast<NSStringEncoding>(charset.encoding);
    auto bytes = lone->dataUsingEncoding(encoding);
    EXPECT_EQ(bytes != nullptr, name.starts_with("UTF-16") || name == "UTF-7");
    EXPECT_TRUE(!bytes || isEqual(NSString::initWithData(bytes, encoding), lone));
  }
  EXPECT_EQ(text(lone->dataUsingEncoding(NSNonLossyASCIIStringEncoding)), "a\\ud83d");
  EXPECT_TRUE(
      isEqual(NSString::initWithData(data("a\\ud83d"), NSNonLossyASCIIStringEncoding), lone));
}

TEST(NSStringEncoding, TextBeyondTheEncodingHasNoBytes) {
  for (const char* charset : {"US-ASCII", "ISO-8859-1", "macintosh", "windows-1252", "ISO-2022-JP"})
    EXPECT_EQ("aЩ😀"_ns->dataUsingEncoding(encodingNamed(charset)), nullptr) << charset;
}

TEST(NSStringEncoding, LossyConversionGivesPlainLettersOrMarks) {
  auto sample = units(u"é\u0416-e\u0301-😀-ﬁ");
  EXPECT_EQ(text(sample->dataUsingEncoding(NSASCIIStringEncoding, true)), "e?-e-?-fi");
  EXPECT_EQ(text(sample->dataUsingEncoding(NSISOLatin1StringEncoding, true)), "\xE9?-e-?-fi");
  EXPECT_EQ(text(sample->dataUsingEncoding(NSMacOSRomanStringEncoding, true)), "\x8E?-e-?-\xDE");
  auto lone = units(std::u16string{u'é', 0xD800});
  EXPECT_EQ(text(lone->dataUsingEncoding(NSUTF8StringEncoding, true)), "é\uFFFD");
  EXPECT_EQ(text(lone->dataUsingEncoding(NSUTF32BigEndianStringEncoding, true)),
            "\0\0\0\xE9\0\0\xFF\xFD"sv);
}

TEST(NSStringEncoding, ASCIITextSharesItsBuffer) {
  auto bytes = data("plain");
  auto plain = NSString::initWithData(bytes, NSWindowsCP1252StringEncoding);
  EXPECT_TRUE(isSame(plain->dataUsingEncoding(NSISOLatin1StringEncoding).get(), bytes.get()));
}

TEST(NSStringEncoding, EscapesAreWrittenForPlainASCIITextAsWell) {
  EXPECT_EQ(text("a\\b"_ns->dataUsingEncoding(NSNonLossyASCIIStringEncoding)), "a\\\\b");
  EXPECT_EQ(text(NSString::initWithData(data("a\\\\b"), NSNonLossyASCIIStringEncoding)), "a\\b");
}

}  // namespace
}  // namespace kbx
