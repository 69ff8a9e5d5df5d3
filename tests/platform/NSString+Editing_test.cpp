#include <gtest/gtest.h>

#include "platform/objects/NSString.h"
#include "platform/text/NSCharacterSet.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSStringEditing, SmallLettersAreThoseOfNoLanguage) {
  struct Case {
    const char *text, *small;
  };
  for (auto [sample, small] : {Case{"UTF-8 äöü", "utf-8 äöü"},
                               {"PLAIN [^_`] z", "plain [^_`] z"},
                               {"ÄÖÜ", "äöü"},
                               {"ΟΔΟΣ", "οδος"},
                               {"İ", "i\u0307"},
                               {"I", "i"},
                               {"\u212A", "k"},
                               {"ẞ", "ß"},
                               {"𐐀", "𐐨"},
                               {"日本", "日本"},
                               {"", ""}})
    EXPECT_EQ(text(string(sample)->lowercaseString()), small);
}

TEST(NSStringEditing, ALoneSurrogateHasNoSmallForm) {
  auto lone = NSString::stringWithUTF16(std::u16string{u'A', 0xD800});
  EXPECT_TRUE(
      isEqual(lone->lowercaseString(), NSString::stringWithUTF16(std::u16string{u'a', 0xD800})));
}

TEST(NSStringEditing, TheEndsLoseWhatTheSetHolds) {
  auto set = NSCharacterSet::characterSetWithCharactersInString("xé"_ns);
  struct Case {
    const char *text, *trimmed;
  };
  for (auto [sample, trimmed] :
       {Case{"xxaxbx", "axb"}, {"éxaé", "a"}, {"abc", "abc"}, {"xxx", ""}, {"é", ""}, {"", ""}})
    EXPECT_EQ(text(string(sample)->stringByTrimmingCharactersInSet(set)), trimmed);
}

TEST(NSStringEditing, AnAbsentSetTrimsNothing) {
  EXPECT_EQ(text(" a "_ns->stringByTrimmingCharactersInSet(nullptr)), " a ");
}

}  // namespace
}  // namespace kbx
