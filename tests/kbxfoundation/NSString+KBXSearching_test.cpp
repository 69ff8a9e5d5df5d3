#include "NSString+KBXSearching.h"

#include <gtest/gtest.h>

#include "platform/objects/NSNumber.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using Question = bool (*)(NSString*, NSString*);

struct Case {
  const char *rule, *text, *other;
  bool answer;
};

void expectAnswers(Question question, std::initializer_list<Case> cases) {
  for (auto [rule, text, other, answer] : cases) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(question(string(text), string(other)), answer);
  }
}

TEST(NSStringKBXSearching, ATextIsContainedUnitByUnit) {
  expectAnswers(&kbxContainsString, {{"inside", "abcd", "bc", true},
                                     {"another case", "abcd", "BC", false},
                                     {"the whole", "é", "é", true},
                                     {"composed is not decomposed", "é", "e\u0301", false},
                                     {"a letter without its mark", "e\u0301", "e", true},
                                     {"nothing", "abc", "", false},
                                     {"in nothing", "", "a", false}});
}

TEST(NSStringKBXSearching, CaseMayBeLeftOut) {
  expectAnswers(&kbxCaseInsensitiveContainsString,
                {{"inside", "xabcd", "BC", true},
                 {"umlauts", "SCHÖN", "ö", true},
                 {"a sharp s", "STRASSE", "straße", true},
                 {"half a sharp s", "ß", "s", false},
                 {"Greek with a final sigma", "ΟΔΟΣ", "οδος", true},
                 {"Cyrillic", "Привет МИР", "мир", true},
                 {"a dotted capital I is not an i", "İ", "i", false},
                 {"nor is a dotless i", "ı", "i", false},
                 {"composed or not", "CAFÉ", "cafe\u0301", true},
                 {"marks count", "café", "CAFE", false},
                 {"widths count", "ＡＢ", "ab", false},
                 {"full-width letters have a case", "ＡＢ", "ｂ", true},
                 {"Hangul and its jamo", "한글", "\u1112\u1161\u11AB", true},
                 {"Devanagari", "हिन्दी", "दी", true},
                 {"a flag", "x🇩🇪", "🇩🇪", true},
                 {"a joined emoji", "👩‍🚀", "👩‍🚀", true},
                 {"nothing", "abc", "", false}});
}

TEST(NSStringKBXSearching, APrefixMayHaveAnotherCase) {
  expectAnswers(&kbxHasCaseInsensitivePrefix, {{"at the start", "Subject: x", "SUBJECT:", true},
                                               {"not inside", "xsub", "sub", false},
                                               {"not longer", "su", "sub", false},
                                               {"other letters", "ÄÖ", "ä", true},
                                               {"half a sharp s", "ß", "s", false},
                                               {"marks count", "é", "E", false},
                                               {"nothing", "abc", "", false}});
}

TEST(NSStringKBXSearching, TextsAreEqualWhereCaseDoesNotCount) {
  EXPECT_TRUE(kbxCaseInsensitiveIsEqual("ABC"_ns, "abc"_ns));
  EXPECT_TRUE(kbxCaseInsensitiveIsEqual("Straße"_ns, "STRASSE"_ns));
  EXPECT_TRUE(kbxCaseInsensitiveIsEqual("É"_ns, "e\u0301"_ns));
  EXPECT_TRUE(kbxCaseInsensitiveIsEqual(""_ns, ""_ns));
  EXPECT_FALSE(kbxCaseInsensitiveIsEqual("abc"_ns, "abcd"_ns));
  EXPECT_FALSE(kbxCaseInsensitiveIsEqual("I"_ns, "ı"_ns));
  EXPECT_FALSE(kbxCaseInsensitiveIsEqual("é"_ns, "e"_ns));
}

TEST(NSStringKBXSearching, WhatIsNoTextIsNotEqual) {
  auto number = NSNumber::numberWithInteger(1);
  EXPECT_FALSE(kbxCaseInsensitiveIsEqual("1"_ns, number));
  EXPECT_FALSE(kbxCaseInsensitiveIsEqual("1"_ns, nullptr));
  EXPECT_FALSE(kbxCaseInsensitiveIsEqual(nullptr, nullptr));
}

TEST(NSStringKBXSearching, ADiacriticPrefixLeavesOutMarksAndWidthsButNotCase) {
  expectAnswers(&kbxHasDiacriticPrefix, {{"the same", "Resume", "Res", true},
                                         {"marks", "Résumé", "Resume", true},
                                         {"marks in the prefix", "Resume", "Rés", true},
                                         {"case", "Résumé", "resume", false},
                                         {"full-width", "ＡＢＣ", "AB", true},
                                         {"full-width in another case", "ａｂ", "AB", false},
                                         {"half-width kana", "ｶﾞ", "ガ", true},
                                         {"not inside", "a Résumé", "Resume", false},
                                         {"a dotted capital I", "İ", "I", true},
                                         {"a dotless i", "ı", "i", false},
                                         {"a sharp s is no case of ss", "ß", "ss", false},
                                         {"a mark alone", "e\u0301", "\u0301", false},
                                         {"nothing", "abc", "", false}});
}

TEST(NSStringKBXSearching, ADiacriticInsensitivePrefixLeavesOutCaseAsWell) {
  expectAnswers(&kbxHasDiacriticInsensitivePrefix,
                {{"case", "Résumé", "resume", true},
                 {"full-width in another case", "ａｂ", "AB", true},
                 {"a dotted capital I", "İstanbul", "istanbul", true},
                 {"a dotless i", "ı", "i", false},
                 {"a sharp s", "ß", "SS", true},
                 {"Greek accents", "Άλφα", "αλφα", true},
                 {"not inside", "a Résumé", "resume", false}});
}

TEST(NSStringKBXSearching, TheTwoPrefixesDifferInCaseAlone) {
  for (auto [sample, prefix] : {std::pair{"Résumé", "resume"}, {"ＡＢ", "ab"}, {"ß", "ss"}}) {
    EXPECT_FALSE(kbxHasDiacriticPrefix(string(sample), string(prefix)));
    EXPECT_TRUE(kbxHasDiacriticInsensitivePrefix(string(sample), string(prefix)));
  }
}

TEST(NSStringKBXSearching, AbsentIsFoundNowhereAndHoldsNothing) {
  for (Question question :
       {&kbxContainsString, &kbxCaseInsensitiveContainsString, &kbxHasCaseInsensitivePrefix,
        &kbxHasDiacriticPrefix, &kbxHasDiacriticInsensitivePrefix}) {
    EXPECT_FALSE(question("a"_ns, nullptr));
    EXPECT_FALSE(question(nullptr, "a"_ns));
  }
}

}  // namespace
}  // namespace kbx
