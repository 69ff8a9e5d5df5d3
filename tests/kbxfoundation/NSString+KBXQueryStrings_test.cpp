#include "NSString+KBXQueryStrings.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/objects/NSNumber.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

/// The entries as "name→value" in their order, with a blank behind each.
std::string entries(const std::string& query) {
  std::string all;
  const Ref<NSMutableDictionary> dictionary = kbxQueryStringDictionary(string(query));
  for (const auto& [name, value] : *dictionary) all += text(name) + "→" + text(value) + " ";
  return all;
}

TEST(NSStringKBXQueryStrings, AQueryBecomesADictionary) {
  struct Case {
    const char *rule, *query, *entries;
  };
  for (auto [rule, query, expected] :
       {Case{"pieces with one sign of equality", "a=1&b&c=2=3&d=%41", "a→1 d→A "},
        {"nothing", "", ""},
        {"an empty value", "a=", "a→ "},
        {"an empty name", "=1", "→1 "},
        {"both empty", "=", "→ "},
        {"empty pieces", "&&a=1&", "a→1 "},
        {"the last of equal names", "a=1&b=2&a=3", "a→3 b→2 "},
        {"names that are equal when decoded", "%61=1&a=2", "a→2 "},
        {"a plus sign is none but itself", "a=b+c", "a→b+c "},
        {"an escaped separator", "a%26b=c%3Dd", "a&b→c=d "},
        {"a malformed escape", "a=%&b=%4&%=c&d=1", "d→1 "},
        {"bytes that are not UTF-8", "a=%FF&b=é%C3%A9", "b→éé "},
        {"a semicolon separates nothing", "a=1;b=2", ""},
        {"case counts in names", "A=1&a=2", "A→1 a→2 "}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(entries(query), expected);
  }
  EXPECT_EQ(kbxQueryStringDictionary(nullptr), nullptr);
}

class NSStringKBXQueryStringsOn : public testing::TestWithParam<NSOperatingSystemVersion> {
 protected:
  std::string query(std::initializer_list<NSDictionary::Pair> pairs) {
    return text(kbxQueryStringWithDictionary(NSDictionary::dictionaryWithPairs(pairs)));
  }
  bool isNew() const { return GetParam() >= NSOperatingSystemVersion{10, 10, 0}; }

  FakeOperatingSystem system{1677.104, GetParam()};
  ScopedService<OperatingSystem> installed{system};
};

TEST_P(NSStringKBXQueryStringsOn, NamesStandInOrderWithoutRegardToCase) {
  EXPECT_EQ(query({{"b"_ns, "2"_ns}, {"C"_ns, "3"_ns}, {"a"_ns, "1"_ns}}), "a=1&b=2&C=3");
  EXPECT_EQ(query({{"a"_ns, "1"_ns}, {"A"_ns, "2"_ns}}), "a=1&A=2");
  EXPECT_EQ(query({{"A"_ns, "2"_ns}, {"a"_ns, "1"_ns}}), "A=2&a=1") << "equal ones as they came";
  EXPECT_EQ(query({{"10"_ns, "x"_ns}, {"9"_ns, "y"_ns}}), "10=x&9=y") << "not by number";
}

TEST_P(NSStringKBXQueryStringsOn, NamesAndValuesAreEscaped) {
  EXPECT_EQ(query({{"a b&="_ns, "é%#=&"_ns}}), "a%20b%26%3D=%C3%A9%25%23%3D%26");
  EXPECT_EQ(query({{"a"_ns, "%41"_ns}}), "a=%2541") << "once";
}

TEST_P(NSStringKBXQueryStringsOn, SemicolonAndPlusAreEscapedByNewSystems) {
  EXPECT_EQ(query({{"a;b"_ns, "c+d"_ns}}), isNew() ? "a%3Bb=c%2Bd" : "a;b=c+d");
  EXPECT_EQ(query({{"a"_ns, "-._~!$'()*,:@/?"_ns}}), "a=-._~!$'()*,:@/?");
}

TEST_P(NSStringKBXQueryStringsOn, AnEmptyDictionaryIsAnEmptyQuery) {
  EXPECT_EQ(query({}), "");
  EXPECT_EQ(kbxQueryStringWithDictionary(nullptr), nullptr);
}

TEST_P(NSStringKBXQueryStringsOn, EmptyNamesAndValuesStand) {
  EXPECT_EQ(query({{""_ns, ""_ns}, {"a"_ns, ""_ns}}), "=&a=");
}

TEST_P(NSStringKBXQueryStringsOn, ALoneSurrogateCannotBeEscaped) {
  auto lone = NSString::stringWithUTF16(std::u16string{0xD83D});
  EXPECT_EQ(query({{"a"_ns, lone}}), isNew() ? "(null)" : "a=(null)");
}

TEST_P(NSStringKBXQueryStringsOn, KeysAndValuesAreTexts) {
  auto number = NSNumber::numberWithInteger(1);
  EXPECT_EQ(nameRaisedBy([&] { query({{"a"_ns, number}}); }), "NSInvalidArgumentException");
  EXPECT_EQ(nameRaisedBy([&] { query({{number, "a"_ns}}); }), "NSInvalidArgumentException");
}

TEST_P(NSStringKBXQueryStringsOn, WhatIsBuiltIsReadBack) {
  std::string all;
  for (int c = 0; c < 128; ++c) all += static_cast<char>(c);
  auto dictionary = NSDictionary::dictionaryWithPairs(
      {{string(all), "é日😀"_ns}, {"é\u0301"_ns, string(all)}, {""_ns, ""_ns}});
  EXPECT_TRUE(
      isEqual(kbxQueryStringDictionary(kbxQueryStringWithDictionary(dictionary)), dictionary));
}

INSTANTIATE_TEST_SUITE_P(Versions, NSStringKBXQueryStringsOn,
                         testing::Values(NSOperatingSystemVersion{10, 9, 5},
                                         NSOperatingSystemVersion{10, 10, 0},
                                         NSOperatingSystemVersion{10, 15, 7}),
                         [](const auto& version) {
                           return "on10_" + std::to_string(version.param.minorVersion);
                         });

TEST(NSStringKBXQueryStrings, TheAvailabilityCheckDecidesNotTheReportedVersion) {
  FakeOperatingSystem system(1677.104, {10, 15, 7});
  system.availableVersion = {10, 9, 0};
  ScopedService<OperatingSystem> installed(system);
  auto dictionary = NSDictionary::dictionaryWithPairs({{"a"_ns, "+"_ns}});
  EXPECT_EQ(text(kbxQueryStringWithDictionary(dictionary)), "a=+");
}

}  // namespace
}  // namespace kbx
