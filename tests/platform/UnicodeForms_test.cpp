#include "platform/text/UnicodeForms.h"

#include <gtest/gtest.h>

namespace kbx {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr auto kLittle = std::endian::little;
constexpr auto kBig = std::endian::big;

TEST(UnicodeForms, UTF16BytesAreUnitsInTheirOrder) {
  EXPECT_EQ(decodeUTF16("a\0\xAC\x20"sv, kLittle), u"a\u20AC");
  EXPECT_EQ(decodeUTF16("\0a\x20\xAC"sv, kBig), u"a\u20AC");
  EXPECT_EQ(encodeUTF16(u"a\u20AC", kLittle), "a\0\xAC\x20"sv);
  EXPECT_EQ(encodeUTF16(u"a\u20AC", kBig), "\0a\x20\xAC"sv);
}

TEST(UnicodeForms, ALoneSurrogateStaysInUTF16) {
  EXPECT_EQ(decodeUTF16("\xD8\0"sv, kBig), (std::u16string{0xD800}));
  EXPECT_EQ(encodeUTF16(std::u16string{0xDFFF}, kBig), "\xDF\xFF"sv);
}

TEST(UnicodeForms, HalfAUnitIsMalformed) {
  EXPECT_FALSE(decodeUTF16("a\0b"sv, kLittle));
  for (auto bytes : {"a"sv, "a\0"sv, "a\0\0"sv, "a\0\0\0b"sv})
    EXPECT_FALSE(decodeUTF32(bytes, kLittle));
}

TEST(UnicodeForms, UTF32BytesAreScalarsInTheirOrder) {
  EXPECT_EQ(decodeUTF32("\0\0\0a\0\x01\xF6\0"sv, kBig), u"a😀");
  EXPECT_EQ(decodeUTF32("a\0\0\0\0\xF6\x01\0"sv, kLittle), u"a😀");
  EXPECT_EQ(encodeUTF32(u"a😀", kBig, false), "\0\0\0a\0\x01\xF6\0"sv);
  EXPECT_EQ(encodeUTF32(u"a😀", kLittle, false), "a\0\0\0\0\xF6\x01\0"sv);
}

TEST(UnicodeForms, UTF32HoldsScalarsOnly) {
  for (auto bytes : {"\0\0\xD8\0"sv, "\0\0\xDF\xFF"sv, "\0\x11\0\0"sv, "\xFF\xFF\xFF\xFF"sv})
    EXPECT_FALSE(decodeUTF32(bytes, kBig));
  for (auto bytes : {"\0\0\xD7\xFF"sv, "\0\0\xE0\0"sv, "\0\x10\xFF\xFF"sv, "\0\0\xFF\xFE"sv})
    EXPECT_EQ(encodeUTF32(*decodeUTF32(bytes, kBig), kBig, false), bytes);
}

TEST(UnicodeForms, ALoneSurrogateHasNoUTF32) {
  EXPECT_FALSE(encodeUTF32(std::u16string{u'a', 0xD800}, kBig, false));
  EXPECT_EQ(encodeUTF32(std::u16string{0xDC00, u'a'}, kBig, true), "\0\0\xFF\xFD\0\0\0a"sv);
}

TEST(UnicodeForms, AByteOrderMarkTellsTheOrder) {
  EXPECT_EQ(byteOrderMark("\xFF\xFE", 2), kLittle);
  EXPECT_EQ(byteOrderMark("\xFE\xFFx", 2), kBig);
  EXPECT_EQ(byteOrderMark("\xFF\xFE\0\0"sv, 4), kLittle);
  EXPECT_EQ(byteOrderMark("\0\0\xFE\xFF"sv, 4), kBig);
  for (auto bytes : {""sv, "\xFF"sv, "ab"sv}) EXPECT_FALSE(byteOrderMark(bytes, 2));
  EXPECT_FALSE(byteOrderMark("\xFF\xFE\0"sv, 4));
}

struct Escaped {
  const char* rule;
  std::u16string text;
  std::string bytes;
};
const Escaped kEscaped[] = {
    {"ASCII is itself, controls too", u"a\n\x7F\u0000b"s, "a\n\x7F\0b"s},
    {"a backslash is doubled", u"\\u0041", "\\\\u0041"},
    {"octal from 0x80", u"\u0080", "\\200"},
    {"octal to 0xFF, always three digits", u"\u00E9\u00FF7", "\\351\\3777"},
    {"lower-case hexadecimal above", u"\u0100\uABCD", "\\u0100\\uabcd"},
    {"a pair is two escapes", u"😀", "\\ud83d\\ude00"},
    {"a lone surrogate is one", {0xDC00}, "\\udc00"},
    {"nothing is nothing", u"", ""},
};

TEST(UnicodeForms, NonLossyASCIIEscapesWhatIsNotASCII) {
  for (const auto& [rule, text, bytes] : kEscaped) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(encodeNonLossyASCII(text), bytes);
    EXPECT_EQ(decodeNonLossyASCII(bytes), text);
  }
}

TEST(UnicodeForms, NonLossyASCIIIsReadWithDigitsOfEitherCase) {
  EXPECT_EQ(decodeNonLossyASCII("\\uABcd"), u"\uABCD");
}

TEST(UnicodeForms, AnyOtherEscapeIsMalformed) {
  for (const char* bytes : {"\\", "a\\", "\\n", "\\u12", "\\u12g4", "\\12", "\\189", "\\400", "\\u",
                            "\\u-123", "\\u+123", "\\-12", "\\ 12", "\xC3\xA9"})
    EXPECT_FALSE(decodeNonLossyASCII(bytes)) << bytes;
}

}  // namespace
}  // namespace kbx
