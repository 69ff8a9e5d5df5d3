#include "platform/text/DisplayOrder.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/FakeEnvironment.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr auto kMask97 = NSCaseInsensitiveSearch | kCFCompareLocalized | NSNumericSearch;

NSComparisonResult compare(const char* locale, const char* a, const char* b,
                           NSStringCompareOptions options = kMask97) {
  const DisplayOrder order(locale);
  const auto result = order.compare(string(a), string(b), options);
  EXPECT_EQ(order.compare(string(b), string(a), options), -result);
  return result;
}

TEST(DisplayOrder, TheMaskIs97) { EXPECT_EQ(std::uint64_t{kMask97}, 97u); }

TEST(DisplayOrder, TextsStandAsInAList) {
  struct Case {
    const char *rule, *a, *b;
    NSComparisonResult order;
  };
  for (auto [rule, a, b, order] :
       {Case{"letters, not codes", "a", "B", NSOrderedAscending},
        {"case does not count", "Öl", "öL", NSOrderedSame},
        {"a sharp s stands behind two letters", "STRASSE", "Straße", NSOrderedAscending},
        {"numbers by their value", "file 9", "File 10", NSOrderedAscending},
        {"leading zeros do not count", "a007b", "A7B", NSOrderedSame},
        {"digits of other scripts are numbers too", "٩", "10", NSOrderedAscending},
        {"numbers beyond any word", "99999999999999999999998", "99999999999999999999999",
         NSOrderedAscending},
        {"marks count after letters", "resume", "résumé", NSOrderedAscending},
        {"but letters decide first", "résumé", "resumf", NSOrderedAscending},
        {"a letter with a mark stands at the letter", "é", "f", NSOrderedAscending},
        {"composed or not", "e\u0301", "é", NSOrderedSame},
        {"blanks before signs before digits before letters", " ", "_", NSOrderedAscending},
        {"signs before digits", "$", "0", NSOrderedAscending},
        {"Latin before Cyrillic", "z", "а", NSOrderedAscending},
        {"the shorter first", "a", "ab", NSOrderedAscending},
        {"nothing first", "", "a", NSOrderedAscending}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(compare("", a, b), order);
    EXPECT_EQ(compare("en_US", a, b), order);
  }
}

TEST(DisplayOrder, ALanguageHasItsOwnOrder) {
  EXPECT_EQ(compare("", "ö", "z"), NSOrderedAscending);
  EXPECT_EQ(compare("sv", "ö", "z"), NSOrderedDescending);
  EXPECT_EQ(compare("", "aa", "z"), NSOrderedAscending);
  EXPECT_EQ(compare("da_DK", "aa", "z"), NSOrderedDescending) << "ASCII texts too";
}

TEST(DisplayOrder, ALanguageThatIsNotKnownHasTheCommonOrder) {
  for (const char* locale : {"xx", "no such language", "\xFF\xFE", "C"})
    EXPECT_EQ(compare(locale, "a", "B"), NSOrderedAscending) << locale;
  EXPECT_EQ(compare(std::string(10000, 'x').c_str(), "a", "B"), NSOrderedAscending);
}

TEST(DisplayOrder, CaseAndNumbersCountWithoutTheirOptions) {
  EXPECT_EQ(compare("", "a", "A", kCFCompareLocalized), NSOrderedAscending);
  EXPECT_EQ(compare("", "9", "10", kCFCompareLocalized), NSOrderedDescending);
  EXPECT_EQ(compare("", "9", "10", NSNumericSearch), NSOrderedAscending);
  EXPECT_EQ(compare("", "9", "10", NSCaseInsensitiveSearch), NSOrderedDescending);
}

TEST(DisplayOrder, TheEnvironmentNamesTheLanguage) {
  struct Case {
    const char* rule;
    std::vector<std::string> variables;
    const char* locale;
  };
  for (const auto& [rule, variables, locale] :
       {Case{"nothing is set", {}, ""},
        {"LANG alone", {"LANG=de_DE.UTF-8"}, "de_DE"},
        {"LC_COLLATE goes before LANG", {"LANG=de_DE", "LC_COLLATE=sv_SE.UTF-8"}, "sv_SE"},
        {"LC_ALL goes before both", {"LANG=de", "LC_COLLATE=sv", "LC_ALL=da@x"}, "da"},
        {"an empty one is none", {"LC_ALL=", "LANG=fr"}, "fr"},
        {"the C locale is no language", {"LC_ALL=C", "LANG=fr"}, ""},
        {"in any charset", {"LANG=C.UTF-8"}, ""},
        {"nor is its other name", {"LANG=POSIX"}, ""},
        {"other variables do not count", {"LANGUAGE=fr", "XLANG=fr"}, ""}}) {
    SCOPED_TRACE(rule);
    FakeEnvironment environment(variables);
    EXPECT_EQ(collationLocale(environment), locale);
  }
}

}  // namespace
}  // namespace kbx
