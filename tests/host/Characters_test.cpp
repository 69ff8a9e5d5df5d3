#include "host/tokenizer/Characters.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace kbx {
namespace {

TEST(Characters, FoldingWhatWasFoldedChangesNothing) {
  const auto isStable = [](char32_t character) {
    const FoldedCharacter one = folded(character);
    if (one.kind == CharacterKind::Separator || one.kind == CharacterKind::Ignored) return true;
    const FoldedCharacter again = folded(one.character);
    return again.kind == one.kind && again.character == one.character;
  };
  int several = 0;
  for (char32_t character = 0; character <= 0x10FFFF; ++character) {
    if (folded(character).kind == CharacterKind::Several) {
      ++several;
      for (const char32_t part : expansionOf(character)) {
        EXPECT_NE(folded(part).kind, CharacterKind::Several)
            << std::hex << std::uint32_t{character};
        EXPECT_TRUE(isStable(part)) << std::hex << std::uint32_t{character};
      }
    } else {
      EXPECT_TRUE(isStable(character)) << std::hex << std::uint32_t{character};
    }
  }
  EXPECT_GT(several, 500);
}

TEST(Characters, AnyNumberHasAKind) {
  EXPECT_EQ(folded(0xD800).kind, CharacterKind::Separator);
  EXPECT_EQ(folded(0x110000).kind, CharacterKind::Separator);
  EXPECT_EQ(folded(0xFFFFFFFF).kind, CharacterKind::Separator);
  EXPECT_EQ(folded(0xF0000).kind, CharacterKind::Letter);
  EXPECT_EQ(folded(0xE0101).kind, CharacterKind::Ignored);
}

TEST(Characters, ManyThreadsMayMeetACharacterFirst) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([] {
      for (char32_t character = 0x10000; character < 0x14000; character += 0x40)
        EXPECT_NE(static_cast<int>(folded(character).kind), 99);
    });
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace kbx
