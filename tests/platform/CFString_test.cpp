#include <gtest/gtest.h>

#include "platform/CoreFoundation.h"
#include "platform/plugins/Bridge.h"

using namespace kbx;

namespace {

Ref<NSString> created(const char* text, CFStringEncoding encoding = kCFStringEncodingUTF8) {
  return adoptCF(CFStringCreateWithCString(kCFAllocatorDefault, text, encoding));
}

}  // namespace

TEST(CFString, AConstantIsOneObjectForEachText) {
  EXPECT_EQ(CFSTR("FoxTrot"), CFSTR("FoxTrot"));
  EXPECT_TRUE(isSame(fromCF(CFSTR("FoxTrot")), "FoxTrot"_ns));
}

TEST(CFString, TextIsMadeFromTheTwoEncodings) {
  EXPECT_EQ(created("gr\xC3\xBC\xC3\x9F")->lossyUTF8(), "gr\xC3\xBC\xC3\x9F");
  EXPECT_EQ(created("abc", kCFStringEncodingASCII)->lossyUTF8(), "abc");
}

TEST(CFString, MalformedBytesAndOtherEncodingsMakeNone) {
  EXPECT_FALSE(created("\xFF"));
  EXPECT_FALSE(created("\xC3\xBC", kCFStringEncodingASCII));
  EXPECT_FALSE(created("abc", 0x0201));
  EXPECT_FALSE(created(nullptr));
}

TEST(CFString, TheLengthCountsUnits) {
  EXPECT_EQ(CFStringGetLength(toCF(created("\xF0\x9F\x98\x80!"))), 3);
  EXPECT_EQ(CFStringGetLength(nullptr), 0);
}

TEST(CFString, TheMaximumSizeHoldsAnyTextOfTheLength) {
  for (const char* text : {"", "abc", "\xC3\xBC", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
    auto length = CFStringGetLength(toCF(created(text)));
    EXPECT_GE(CFStringGetMaximumSizeForEncoding(length, kCFStringEncodingUTF8),
              static_cast<CFIndex>(std::string(text).size()));
  }
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(7, kCFStringEncodingASCII), 7);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(7, 0x0201), -1);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(-1, kCFStringEncodingUTF8), -1);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(INT64_MAX, kCFStringEncodingUTF8), -1);
}

TEST(CFString, TextIsWrittenWithItsClosingZero) {
  char buffer[4];
  EXPECT_TRUE(CFStringGetCString(CFSTR("abc"), buffer, 4, kCFStringEncodingUTF8));
  EXPECT_STREQ(buffer, "abc");
}

TEST(CFString, TextThatDoesNotFitOrCannotBeWrittenLeavesAnEmptyBuffer) {
  auto lone = NSString::stringWithUTF16(u"\xD800");
  auto wide = created("\xC3\xBC");
  struct Case {
    const char* rule;
    CFStringRef string;
    CFIndex size;
    CFStringEncoding encoding;
  };
  for (auto [rule, string, size, encoding] :
       {Case{"no room for the zero", CFSTR("abc"), 3, kCFStringEncodingUTF8},
        Case{"a lone surrogate", toCF(lone), 16, kCFStringEncodingUTF8},
        Case{"not ASCII", toCF(wide), 16, kCFStringEncodingASCII},
        Case{"an unknown encoding", CFSTR("abc"), 16, 0x0201},
        Case{"absent", nullptr, 16, kCFStringEncodingUTF8}}) {
    SCOPED_TRACE(rule);
    char buffer[16] = "before";
    EXPECT_FALSE(CFStringGetCString(string, buffer, size, encoding));
    EXPECT_STREQ(buffer, "");
  }
  EXPECT_FALSE(CFStringGetCString(CFSTR("abc"), nullptr, 16, kCFStringEncodingUTF8));
  char untouched = 'x';
  EXPECT_FALSE(CFStringGetCString(CFSTR("abc"), &untouched, 0, kCFStringEncodingUTF8));
  EXPECT_EQ(untouched, 'x');
}
