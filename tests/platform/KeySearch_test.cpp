#include "platform/text/KeySearch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>

namespace kbx {
namespace {

template <class A, class B>
std::size_t find(const std::basic_string<A>& wanted, const std::basic_string<B>& units,
                 std::size_t from = 0) {
  return KeySearch(std::span<const A>(wanted)).find(std::span<const B>(units), from);
}

TEST(KeySearch, FindsTheFirstPlace) {
  EXPECT_EQ((find<char, char>("b", "abab")), 1u);
  EXPECT_EQ((find<char, char>("abab", "aababab")), 1u);
  EXPECT_EQ((find<char, char>("aab", "aaaab")), 2u);
  EXPECT_EQ((find<char, char>("b", "abab", 2)), 3u);
}

TEST(KeySearch, WhatIsNotThereIsAtTheEnd) {
  EXPECT_EQ((find<char, char>("b", "")), 0u);
  EXPECT_EQ((find<char, char>("abc", "abab")), 4u);
  EXPECT_EQ((find<char, char>("longer", "long")), 4u);
}

TEST(KeySearch, UnitsOfBothWidthsMeetByValue) {
  EXPECT_EQ((find<char, char16_t>("lo", u"hello")), 3u);
  EXPECT_EQ((find<char16_t, char>(u"lo", "hello")), 3u);
  EXPECT_EQ((find<char16_t, char>(u"\u016C", "hello")), 5u) << "not by its lower byte";
  EXPECT_EQ((find<char16_t, char>(u"l\u016F", "hello")), 5u);
}

TEST(KeySearch, APlaceThatIsNotTakenMayOverlapTheNext) {
  const std::string units = "aaaa", wanted = "aaa";
  std::vector<std::size_t> places;
  KeySearch(std::span<const char>(wanted))
      .find(std::span<const char>(units), 0, [&](std::size_t place) {
        places.push_back(place);
        return false;
      });
  EXPECT_EQ(places, (std::vector<std::size_t>{0, 1}));
}

TEST(KeySearch, AgreesWithTheStandardSearch) {
  std::mt19937 random(1);
  for (int round = 0; round < 3000; ++round) {
    std::string units, wanted;
    for (std::size_t length = random() % 30; units.size() < length;) units += "ab"[random() % 2];
    for (std::size_t length = 1 + random() % 5; wanted.size() < length;)
      wanted += "ab"[random() % 2];
    EXPECT_EQ(find(wanted, units), std::min(units.find(wanted), units.size()));
  }
}

TEST(KeySearch, ALongRepetitiveTextCostsNoMoreThanItsLength) {
  // Quadratic time would be minutes here.
  const std::string units(2'000'000, 'a');
  std::string wanted(1'000'000, 'a');
  wanted.back() = 'b';
  EXPECT_EQ(find(wanted, units), units.size());
}

}  // namespace
}  // namespace kbx
