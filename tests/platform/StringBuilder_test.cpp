#include "platform/text/StringBuilder.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/Text.h"

namespace kbx {
namespace {

TEST(StringBuilder, PiecesComeOutInTheirOrder) {
  StringBuilder builder;
  EXPECT_TRUE(builder.isEmpty());
  builder.append("a").append("\u00E9"_ns).append(u"\u96FB").appendUnit('z').append("caf\u00E9");
  EXPECT_EQ(builder.length(), 8U);
  EXPECT_EQ(text(builder.take()), "a\u00E9\u96FBzcaf\u00E9");
}

TEST(StringBuilder, ItIsEmptyAfterwards) {
  StringBuilder builder;
  builder.append("\u00E9");
  builder.take();
  EXPECT_TRUE(builder.isEmpty());
  EXPECT_EQ(text(builder.append("b").take()), "b");
  EXPECT_EQ(text(builder.take()), "");
}

TEST(StringBuilder, AbsentAndEmptyAddNothing) {
  StringBuilder builder;
  builder.append(static_cast<NSString*>(nullptr)).append("").append(u"").append(""_ns);
  EXPECT_TRUE(builder.isEmpty());
  EXPECT_EQ(text(builder.take()), "");
}

TEST(StringBuilder, ASCIIStaysASCIIWhateverBringsIt) {
  StringBuilder builder;
  builder.append(u"abc").appendUnit(u'd').append("e"_ns);
  EXPECT_TRUE(builder.take()->isASCII());
  builder.append(*"\u00E9xyz"_ns, {1, 2});
  auto part = builder.take();
  EXPECT_TRUE(part->isASCII());
  EXPECT_TRUE(isEqual(part, "xy"_ns));
}

TEST(StringBuilder, MalformedUTF8BecomesReplacements) {
  EXPECT_EQ(text(StringBuilder().append("a\xFF\xE2\x82z").take()), "a\uFFFD\uFFFDz");
}

TEST(StringBuilder, LoneSurrogatesAreKeptAndMeet) {
  StringBuilder builder;
  builder.appendUnit(0xD83D);
  EXPECT_EQ(builder.length(), 1U);
  auto lone = builder.take();
  EXPECT_EQ(lone->characterAtIndex(0), 0xD83D);
  EXPECT_EQ(text(builder.append(lone).appendUnit(0xDE00).take()), "\U0001F600");
}

TEST(StringBuilder, AgreesWithAPlainString) {
  std::mt19937 random(1);
  const std::u16string_view pieces[] = {u"a", u"plain", u"\u00E9", u"\xD800", u"\xDC00", u""};
  for (int round = 0; round < 2000; ++round) {
    StringBuilder builder;
    std::u16string expected;
    for (std::size_t count = random() % 12; count; --count) {
      const auto piece = pieces[random() % (round % 2 ? 2 : std::size(pieces))];
      expected += piece;
      if (random() % 2)
        builder.append(piece);
      else
        for (char16_t unit : piece) builder.appendUnit(unit);
      ASSERT_EQ(builder.length(), expected.size());
    }
    ASSERT_TRUE(isEqual(builder.take(), NSString::stringWithUTF16(expected)));
  }
}

}  // namespace
}  // namespace kbx
