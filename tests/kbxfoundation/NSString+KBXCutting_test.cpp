#include "NSString+KBXCutting.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSStringKBXCutting, ThePartBeforeTheFirstOccurrence) {
  EXPECT_EQ(text(kbxSubstringToString("key=a=b"_ns, "="_ns)), "key");
  EXPECT_EQ(text(kbxSubstringToString("é=b"_ns, "="_ns)), "é");
  EXPECT_EQ(text(kbxSubstringToString("=b"_ns, "="_ns)), "");
  for (NSString* end : {"x"_ns, "KEY"_ns, ""_ns, static_cast<NSString*>(nullptr)})
    EXPECT_EQ(text(kbxSubstringToString("key"_ns, end)), "");
  EXPECT_EQ(kbxSubstringToString(nullptr, "="_ns), nullptr);
}

TEST(NSStringKBXCutting, ThePartBehindTheFirstOccurrence) {
  EXPECT_EQ(text(kbxSubstringFromString("key=a=b"_ns, "="_ns)), "a=b");
  EXPECT_EQ(text(kbxSubstringFromString("a->é"_ns, "->"_ns)), "é");
  EXPECT_EQ(text(kbxSubstringFromString("a="_ns, "="_ns)), "");
  for (NSString* start : {"x"_ns, ""_ns, static_cast<NSString*>(nullptr)})
    EXPECT_EQ(text(kbxSubstringFromString("key"_ns, start)), "");
  EXPECT_EQ(kbxSubstringFromString(nullptr, "="_ns), nullptr);
}

TEST(NSStringKBXCutting, TheFirstUnitsOrAllOfThem) {
  for (NSString* string : {"abc"_ns, "aé😀"_ns}) {
    EXPECT_EQ(kbxSubstringToIndex(string, 0)->length(), 0u);
    EXPECT_EQ(kbxSubstringToIndex(string, 2)->length(), 2u);
    for (std::size_t index : {string->length(), std::size_t{99}, SIZE_MAX}) {
      auto whole = kbxSubstringToIndex(string, index);
      EXPECT_TRUE(isEqual(whole, string));
      EXPECT_FALSE(isSame(whole.get(), string)) << "a copy";
    }
  }
  EXPECT_EQ(kbxSubstringToIndex("😀"_ns, 1)->characterAtIndex(0), 0xD83D) << "units are cut apart";
  EXPECT_EQ(kbxSubstringToIndex(nullptr, 1), nullptr);
}

TEST(NSStringKBXCutting, TheUnitsFromAnIndexOn) {
  EXPECT_EQ(text(kbxSubstringFromIndex("abc"_ns, 1)), "bc");
  EXPECT_EQ(text(kbxSubstringFromIndex("aéc"_ns, 1)), "éc");
  EXPECT_EQ(text(kbxSubstringFromIndex("abc"_ns, 0)), "abc");
  EXPECT_EQ(text(kbxSubstringFromIndex("abc"_ns, 3)), "");
  EXPECT_EQ(text(kbxSubstringFromIndex("abc"_ns, SIZE_MAX)), "");
  EXPECT_EQ(text(kbxSubstringFromIndex(""_ns, 0)), "");
  EXPECT_EQ(kbxSubstringFromIndex(nullptr, 0), nullptr);
}

TEST(NSStringKBXCutting, ChoppingTakesTheLastUnit) {
  EXPECT_EQ(text(kbxStringByChopping("abc"_ns)), "ab");
  EXPECT_EQ(text(kbxStringByChopping("a"_ns)), "");
  EXPECT_EQ(text(kbxStringByChopping(""_ns)), "");
  EXPECT_EQ(text(kbxStringByChopping("e\u0301"_ns)), "e") << "a mark is a unit";
  EXPECT_EQ(kbxStringByChopping("a😀"_ns)->characterAtIndex(1), 0xD83D);
  EXPECT_EQ(kbxStringByChopping(nullptr), nullptr);
}

TEST(NSStringKBXCutting, PiecesLieBetweenSingleBlanks) {
  struct Case {
    const char *text, *first, *last;
  };
  for (auto [sample, first, last] : {Case{"one two three", "one", "three"},
                                     {"é b ü", "é", "ü"},
                                     {"one", "one", "one"},
                                     {"", "", ""},
                                     {" a ", "", ""},
                                     {"a  b", "a", "b"},
                                     {"a\tb", "a\tb", "a\tb"}}) {
    EXPECT_EQ(text(kbxFirstSpaceComponent(string(sample))), first) << sample;
    EXPECT_EQ(text(kbxLastSpaceComponent(string(sample))), last) << sample;
  }
  EXPECT_EQ(kbxFirstSpaceComponent(nullptr), nullptr);
  EXPECT_EQ(kbxLastSpaceComponent(nullptr), nullptr);
}

TEST(NSStringKBXCutting, StrippingTakesWhiteSpaceAndLineBreaksAtBothEnds) {
  struct Case {
    const char *text, *stripped;
  };
  for (auto [sample, stripped] : {Case{" \t\r\n\v\fa b\n ", "a b"},
                                  {"a", "a"},
                                  {" \n ", ""},
                                  {"", ""},
                                  {" é b\u0085", "é b"},
                                  {"\u3000\u2028é\u00A0\u2029\u2003", "é"},
                                  {"\u200Bé", "\u200Bé"},
                                  {"\x1F a", "\x1F a"}})
    EXPECT_EQ(text(kbxStringByStripping(string(sample))), stripped) << sample;
  EXPECT_EQ(kbxStringByStripping(nullptr), nullptr);
}

TEST(NSStringKBXCutting, BothStoragesAreStrippedOfTheSameCharacters) {
  for (char c = 0; c >= 0 && c < 127; ++c) {
    const std::string ascii = std::string(1, c) + "a", other = std::string(1, c) + "é";
    EXPECT_EQ(kbxStringByStripping(string(ascii))->length(),
              kbxStringByStripping(string(other))->length())
        << int{c};
  }
}

}  // namespace
}  // namespace kbx
