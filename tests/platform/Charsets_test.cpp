#include "platform/text/Charsets.h"

#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <set>
#include <string>

namespace kbx {
namespace {

TEST(Charsets, EveryEncodingHasOneEntryThatTheConversionLibraryKnows) {
  std::set<std::uint64_t> numbers;
  for (const Charset& charset : charsets()) {
    SCOPED_TRACE(charset.name);
    EXPECT_TRUE(numbers.insert(charset.encoding).second);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_close(ucnv_open(charset.name, &status));
    EXPECT_TRUE(U_SUCCESS(status));
  }
}

TEST(Charsets, EveryEntryIsFoundByItsName) {
  for (const Charset& charset : charsets())
    EXPECT_EQ(std::uint64_t{encodingOfCharset(charset.name)}, charset.encoding) << charset.name;
}

TEST(Charsets, AnEntryKeepsASCIIWhenTheConversionLibraryDoes) {
  for (const Charset& charset : charsets()) {
    SCOPED_TRACE(charset.name);
    UErrorCode status = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(charset.name, &status);
    bool keepsASCII = true;
    for (char c = 0; c >= 0 && c < 127; ++c) {
      char16_t units[8];
      char bytes[8];
      const char16_t unit = static_cast<char16_t>(c);
      status = U_ZERO_ERROR;
      keepsASCII &= ucnv_toUChars(converter, units, 8, &c, 1, &status) == 1 && units[0] == unit;
      keepsASCII &= ucnv_fromUChars(converter, bytes, 8, &unit, 1, &status) == 1 && bytes[0] == c;
      keepsASCII &= U_SUCCESS(status);
    }
    ucnv_close(converter);
    EXPECT_EQ(charset.keepsASCII, keepsASCII);
  }
}

TEST(Charsets, ANameIsReadInAnyCaseAndSpelling) {
  struct Case {
    const char* name;
    std::uint64_t encoding;
  };
  for (auto [name, encoding] : {Case{"UTF-8", NSUTF8StringEncoding},
                                {"utf-8", NSUTF8StringEncoding},
                                {"Utf8", NSUTF8StringEncoding},
                                {"us-ascii", NSASCIIStringEncoding},
                                {"ascii", NSASCIIStringEncoding},
                                {"ANSI_X3.4-1968", NSASCIIStringEncoding},
                                {"iso-8859-1", NSISOLatin1StringEncoding},
                                {"latin1", NSISOLatin1StringEncoding},
                                {"ISO_8859-1:1987", NSISOLatin1StringEncoding},
                                {"cp1252", NSWindowsCP1252StringEncoding},
                                {"macintosh", NSMacOSRomanStringEncoding},
                                {"mac", NSMacOSRomanStringEncoding},
                                {"x-sjis", NSShiftJISStringEncoding},
                                {"euc-jp", NSJapaneseEUCStringEncoding},
                                {"csISO2022JP", NSISO2022JPStringEncoding},
                                {"utf-16", NSUnicodeStringEncoding},
                                {"utf-32le", 0x9C000100},
                                {"koi8-r", 0x80000A02},
                                {"iso-8859-15", 0x8000020F},
                                {"gb18030", 0x80000632},
                                {"gb2312", 0x80000930},
                                {"big5", 0x80000A03},
                                {"euc-kr", 0x80000940},
                                {"ks_c_5601-1987", 0x80000422}})
    EXPECT_EQ(std::uint64_t{encodingOfCharset(name)}, encoding) << name;
}

TEST(Charsets, AnUnknownNameHasNoNumber) {
  using namespace std::string_literals;
  for (const std::string& name :
       {""s, "x-unknown"s, "utf 8"s, " utf-8"s, "utf-8\0"s, "ütf-8"s, "-"s, std::string(5000, 'x')})
    EXPECT_EQ(encodingOfCharset(name), NSUnknownStringEncoding) << name;
}

TEST(Charsets, AnUnknownNumberHasNoEntry) {
  EXPECT_EQ(charsetOf(NSUnknownStringEncoding), nullptr);
  EXPECT_EQ(charsetOf(NSNonLossyASCIIStringEncoding), nullptr);
  EXPECT_EQ(charsetOf(static_cast<NSStringEncoding>(0xFFFFFFFF)), nullptr);
}

}  // namespace
}  // namespace kbx
