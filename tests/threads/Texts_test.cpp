// What texts share between threads: tables made at first use, the order for display, iterators.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "NSString+KBXBasics.h"
#include "platform/text/DisplayOrder.h"
#include "platform/text/UTF8.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

void onThreads(const std::function<void()>& work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
}

TEST(TextsAndThreads, FoldingPagesAreMadeByWhoeverIsFirst) {
  std::u16string all;
  for (char16_t unit = 0x80; unit < 0xD800; unit = static_cast<char16_t>(unit + 0x40)) all += unit;
  const Ref<NSString> text = NSString::stringWithUTF16(all + u"Ж");
  onThreads([&] {
    EXPECT_TRUE(kbxCaseInsensitiveContainsString(text, "ж"_ns));
    EXPECT_TRUE(kbxHasDiacriticPrefix("Ⓔ\u0301"_ns, "Ⓔ"_ns));
    EXPECT_TRUE(kbxHasDiacriticInsensitivePrefix("ＡＢ"_ns, "a"_ns));
  });
}

TEST(TextsAndThreads, LongUTF8HasItsUnitsMadeOnceByWhoeverIsFirst) {
  std::string bytes;
  while (bytes.size() < 5000) bytes += "é電😀 ";
  const std::u16string expected = *utf16FromUTF8(bytes);
  for (int round = 0; round < 20; ++round) {
    const Ref<NSString> text = string(bytes);
    ASSERT_TRUE(text->keptUTF8().has_value());
    onThreads([&] {
      EXPECT_EQ(text->length(), expected.size());
      const void* first = nullptr;
      for (int again = 0; again < 2; ++again) {
        text->visitUnits([&](auto units) {
          EXPECT_TRUE(std::ranges::equal(units, expected));
          EXPECT_TRUE(again == 0 || first == units.data());
          first = units.data();
        });
      }
      EXPECT_EQ(text->UTF8Data()->view(), bytes);
    });
  }
}

TEST(TextsAndThreads, AnOrderIsShared) {
  const DisplayOrder order("de");
  const auto options = NSCaseInsensitiveSearch | NSNumericSearch;
  onThreads([&] {
    for (int round = 0; round < 100; ++round) {
      EXPECT_EQ(order.compare("ä"_ns, "z"_ns, options), NSOrderedAscending);
      EXPECT_EQ(kbxCompareForDisplay("Ж2"_ns, "ж10"_ns), NSOrderedAscending);
    }
  });
}

TEST(TextsAndThreads, EachThreadHasIteratorsOfItsOwn) {
  const Ref<NSString> flags = string("🇩🇪🇫🇷🇩🇪🇫🇷");
  onThreads([&] {
    for (int round = 0; round < 100; ++round)
      EXPECT_EQ(text(kbxStringByTruncatingMiddleAfterComposedLength(flags, 5)), "🇩🇪…🇫🇷");
  });
}

TEST(TextsAndThreads, QueriesAreBuiltOnAnyThread) {
  const auto dictionary = NSDictionary::dictionaryWithPairs({{"b"_ns, "+"_ns}, {"A"_ns, "é"_ns}});
  onThreads([&] { EXPECT_EQ(text(kbxQueryStringWithDictionary(dictionary)), "A=%C3%A9&b=%2B"); });
}

TEST(TextsAndThreads, ConvertersAreOpenedOnAnyThread) {
  onThreads([] {
    for (int round = 0; round < 20; ++round)
      EXPECT_EQ(text(kbxStringWithData(data("\xC6\xFC"), NSJapaneseEUCStringEncoding, nullptr)),
                "日");
  });
}

}  // namespace
}  // namespace kbx
