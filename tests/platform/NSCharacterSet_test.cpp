#include "platform/text/NSCharacterSet.h"

#include <gtest/gtest.h>

#include "platform/objects/NSData.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(NSCharacterSet, ARangeHoldsItsCodePointsAndNoOthers) {
  auto set = NSCharacterSet::characterSetWithRange({'a', 3});
  EXPECT_FALSE(set->longCharacterIsMember('`'));
  EXPECT_TRUE(set->longCharacterIsMember('a'));
  EXPECT_TRUE(set->longCharacterIsMember('c'));
  EXPECT_FALSE(set->longCharacterIsMember('d'));
}

TEST(NSCharacterSet, WhatLiesBeyondUnicodeIsLeftOut) {
  auto all = NSCharacterSet::characterSetWithRange({0, UINT64_MAX});
  EXPECT_TRUE(all->longCharacterIsMember(0x10FFFF));
  EXPECT_FALSE(all->longCharacterIsMember(0x110000));
  auto none = NSCharacterSet::characterSetWithRange({UINT64_MAX, UINT64_MAX});
  EXPECT_TRUE(isEqual(none, NSCharacterSet::characterSetWithCharactersInString(nullptr)));
}

TEST(NSCharacterSet, ATextGivesItsCodePoints) {
  auto set = NSCharacterSet::characterSetWithCharactersInString(string("aé😀"));
  for (std::uint32_t member : {std::uint32_t{'a'}, 0xE9u, 0x1F600u})
    EXPECT_TRUE(set->longCharacterIsMember(member));
  EXPECT_FALSE(set->longCharacterIsMember(0xD83D));
}

TEST(NSCharacterSet, TheNamedSets) {
  struct Case {
    Ref<NSCharacterSet> set;
    std::u32string members, others;
  };
  for (const auto& [set, members, others] :
       {Case{NSCharacterSet::whitespaceCharacterSet(), U" \t\u00A0\u3000", U"\n\ra"},
        Case{NSCharacterSet::newlineCharacterSet(), U"\n\v\f\r\u0085\u2028\u2029", U" \ta"},
        Case{NSCharacterSet::whitespaceAndNewlineCharacterSet(), U" \t\n\u2029", U"a_"},
        Case{NSCharacterSet::decimalDigitCharacterSet(), U"09\u0663", U"a\u00BD"},
        Case{NSCharacterSet::alphanumericCharacterSet(), U"aZ9é日\u0301\u00BD", U"-_ "}}) {
    for (auto member : members)
      EXPECT_TRUE(set->longCharacterIsMember(member)) << std::uint32_t{member};
    for (auto other : others)
      EXPECT_FALSE(set->longCharacterIsMember(other)) << std::uint32_t{other};
  }
}

TEST(NSCharacterSet, TheInvertedSetHoldsTheRest) {
  auto set = NSCharacterSet::characterSetWithRange({'a', 1});
  EXPECT_FALSE(set->invertedSet()->longCharacterIsMember('a'));
  EXPECT_TRUE(set->invertedSet()->longCharacterIsMember(0x10FFFF));
  EXPECT_TRUE(isEqual(set->invertedSet()->invertedSet(), set));
}

TEST(NSCharacterSet, TheBitmapHasOneBitForEachCodePointOfTheBasicPlane) {
  auto bitmap = NSCharacterSet::characterSetWithCharactersInString(string("\x01"
                                                                          "Aé日😀"))
                    ->bitmapRepresentation();
  ASSERT_EQ(bitmap->length(), 8192u);
  std::size_t bits = 0;
  for (std::size_t i = 0; i < 8192; ++i)
    bits += static_cast<std::size_t>(__builtin_popcount(bitmap->bytes()[i]));
  EXPECT_EQ(bits, 4u);
  for (int value : {1, int{'A'}, 0xE9, 0x65E5})
    EXPECT_TRUE(bitmap->bytes()[value / 8] >> (value % 8) & 1) << value;
}

}  // namespace
}  // namespace kbx
