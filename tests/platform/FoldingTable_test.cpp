#include "platform/text/FoldingTable.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/text/CaseFolding.h"

namespace kbx {
namespace {

constexpr auto kAll =
    NSCaseInsensitiveSearch | NSDiacriticInsensitiveSearch | NSWidthInsensitiveSearch;

TEST(FoldingTable, EveryUnitIsAsTheFoldingSays) {
  for (auto options : {NSStringCompareOptions{}, NSCaseInsensitiveSearch, kAll}) {
    const FoldingTable& table = FoldingTable::of(options);
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
      if (value >= 0xD800 && value <= 0xDFFF) continue;
      const auto unit = static_cast<char16_t>(value);
      const std::u16string key = foldedKey({unit}, options);
      const FoldingTable::Entry entry = table[unit];
      ASSERT_EQ(entry.isSimple, key.size() == 1) << value;
      ASSERT_TRUE(!entry.isSimple || entry.key == key[0]) << value;
      ASSERT_EQ(entry.mayJoin, joinsBefore(unit, options)) << value;
    }
  }
}

TEST(FoldingTable, HalfAPairIsNeverSimple) {
  for (unsigned value = 0xD800; value <= 0xDFFF; ++value) {
    const FoldingTable::Entry entry = FoldingTable::of(kAll)[static_cast<char16_t>(value)];
    EXPECT_FALSE(entry.isSimple);
    EXPECT_TRUE(entry.mayJoin);
  }
}

TEST(FoldingTable, OtherOptionsMakeNoOtherTable) {
  EXPECT_EQ(&FoldingTable::of(NSCaseInsensitiveSearch),
            &FoldingTable::of(NSCaseInsensitiveSearch | NSAnchoredSearch));
  EXPECT_NE(&FoldingTable::of(NSCaseInsensitiveSearch), &FoldingTable::of(kAll));
}

}  // namespace
}  // namespace kbx
