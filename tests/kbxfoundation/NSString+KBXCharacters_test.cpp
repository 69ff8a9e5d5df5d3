#include "NSString+KBXCharacters.h"

#include <gtest/gtest.h>

#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSStringKBXCharacters, ACharacterIsAtItsIndex) {
  for (NSString* string : {"abc"_ns, "abé"_ns}) {
    EXPECT_TRUE(kbxHasCharacter(string, 'b', 1));
    EXPECT_FALSE(kbxHasCharacter(string, 'a', 1));
    EXPECT_FALSE(kbxHasCharacter(string, 'c', 3));
    EXPECT_FALSE(kbxHasCharacter(string, 'a', SIZE_MAX));
  }
  EXPECT_TRUE(kbxHasCharacter("abé"_ns, u'é', 2));
  EXPECT_TRUE(kbxHasCharacter("😀"_ns, 0xDE00, 1)) << "units, not characters";
  EXPECT_FALSE(kbxHasCharacter(nullptr, 'a', 0));
}

TEST(NSStringKBXCharacters, ACharacterIsContainedAnywhere) {
  EXPECT_TRUE(kbxContainsCharacter("abc"_ns, 'c'));
  EXPECT_TRUE(kbxContainsCharacter("aéc"_ns, u'é'));
  EXPECT_FALSE(kbxContainsCharacter("abc"_ns, u'\u0161')) << "not by the lower byte";
  EXPECT_FALSE(kbxContainsCharacter("abc"_ns, 'C'));
  EXPECT_FALSE(kbxContainsCharacter(""_ns, 0));
  EXPECT_FALSE(kbxContainsCharacter(nullptr, 'a'));
}

TEST(NSStringKBXCharacters, OccurrencesAreCounted) {
  EXPECT_EQ(kbxCountOccurrencesOfCharacter("banana"_ns, 'a'), 3u);
  EXPECT_EQ(kbxCountOccurrencesOfCharacter("éaé"_ns, u'é'), 2u);
  EXPECT_EQ(kbxCountOccurrencesOfCharacter("banana"_ns, 'x'), 0u);
  EXPECT_EQ(kbxCountOccurrencesOfCharacter(""_ns, 'x'), 0u);
  EXPECT_EQ(kbxCountOccurrencesOfCharacter(nullptr, 'x'), 0u);
}

TEST(NSStringKBXCharacters, AMatchIsEveryUnitInTheSet) {
  auto set = NSCharacterSet::characterSetWithCharactersInString("abé😀"_ns);
  EXPECT_TRUE(kbxMatchesCharacterSet("abba"_ns, set));
  EXPECT_TRUE(kbxMatchesCharacterSet("éa"_ns, set));
  EXPECT_FALSE(kbxMatchesCharacterSet("abc"_ns, set));
  EXPECT_FALSE(kbxMatchesCharacterSet("😀"_ns, set)) << "its units are looked up one by one";
  EXPECT_TRUE(kbxMatchesCharacterSet(""_ns, set));
  EXPECT_TRUE(kbxMatchesCharacterSet(""_ns, nullptr));
  EXPECT_FALSE(kbxMatchesCharacterSet("a"_ns, nullptr));
  EXPECT_FALSE(kbxMatchesCharacterSet(nullptr, set));
}

TEST(NSStringKBXCharacters, OnlyTheSetsUnitsAreKept) {
  auto digits = NSCharacterSet::decimalDigitCharacterSet();
  EXPECT_EQ(text(kbxStringByKeepingCharactersInSet("a1b22"_ns, digits)), "122");
  EXPECT_EQ(text(kbxStringByKeepingCharactersInSet("é1٣x"_ns, digits)), "1٣");
  EXPECT_EQ(text(kbxStringByKeepingCharactersInSet("abc"_ns, digits)), "");
  EXPECT_EQ(text(kbxStringByKeepingCharactersInSet(""_ns, digits)), "");
  EXPECT_EQ(text(kbxStringByKeepingCharactersInSet("a1"_ns, nullptr)), "");
  EXPECT_EQ(kbxStringByKeepingCharactersInSet(nullptr, digits), nullptr);
}

}  // namespace
}  // namespace kbx
