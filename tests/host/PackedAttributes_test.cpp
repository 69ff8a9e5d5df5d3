#include "host/store/PackedAttributes.h"

#include <gtest/gtest.h>

#include <random>

namespace kbx {
namespace {

/// Words as a page has them, which can be packed but not to nothing.
std::string page(std::size_t size) {
  std::mt19937 random(1);
  std::string text = "bplist00";
  while (text.size() < size)
    text += "<p class=\"" + std::to_string(random() % 1000) + "\">word</p>";
  text.resize(size);
  return text;
}

TEST(PackedAttributes, EveryListComesBack) {
  std::mt19937 random(1);
  std::string noise(50'000, '\0');
  for (char& byte : noise) byte = static_cast<char>(random());
  for (const std::string& list : {std::string(), std::string("bplist00"), page(4095), page(4096),
                                  page(3'000'000), std::string(1'000'000, 'x'), noise}) {
    const std::string packed = packedAttributes(list);
    EXPECT_LE(packed.size(), list.size());
    EXPECT_EQ(unpackedAttributes(packed), list) << list.size();
  }
}

TEST(PackedAttributes, LargeListsTakeLess) {
  EXPECT_LT(packedAttributes(page(40'000)).size(), 20'000u);
}

TEST(PackedAttributes, SmallOnesAndThoseThatDoNotShrinkStayAsTheyAre) {
  std::mt19937 random(1);
  std::string noise = "bplist00";
  while (noise.size() < 50'000) noise += static_cast<char>(random());
  EXPECT_EQ(packedAttributes(page(4095)), page(4095));
  EXPECT_EQ(packedAttributes(noise), noise);
}

TEST(PackedAttributes, WhatWouldShrinkTooFarToBeToldFromABombStaysAsItIs) {
  const std::string blanks(10'000'000, ' ');
  EXPECT_EQ(packedAttributes(blanks), blanks);
}

TEST(PackedAttributes, CutOrChangedBytesAreRefused) {
  constexpr std::size_t kHead = 7;  // mark, kind and size: other ones may mean something else
  const std::string packed = packedAttributes(page(20'000));
  for (std::size_t length = 4; length < packed.size(); ++length)
    EXPECT_FALSE(unpackedAttributes(packed.substr(0, length))) << length;
  for (std::size_t place = 4; place < packed.size(); ++place) {
    std::string changed = packed;
    changed[place] = static_cast<char>(~changed[place]);
    const auto list = unpackedAttributes(changed);
    if (place >= kHead) {
      EXPECT_FALSE(list) << place;
    } else if (list) {
      EXPECT_LE(list->size(), 256 * (changed.size() + 1)) << place;
    }
  }
}

TEST(PackedAttributes, AClaimOfAHugeListTakesNoMemory) {
  // A frame of one block whose head says that it holds 2^62 bytes.
  using namespace std::string_literals;
  const std::string bomb = "\x28\xB5\x2F\xFD\xE0\0\0\0\0\0\0\0\x40\x03\0\0\x20"s;
  EXPECT_FALSE(unpackedAttributes(bomb));
}

}  // namespace
}  // namespace kbx
