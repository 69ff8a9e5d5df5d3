#include "platform/text/UTF8.h"

#include <gtest/gtest.h>
#include <unicode/ustring.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace kbx {
namespace {

/// ICU's answer; absent when it says that the bytes are malformed.
std::optional<std::u16string> icuDecode(std::string_view bytes) {
  std::u16string units(bytes.size() + 1, u'\0');
  std::int32_t length = 0;
  UErrorCode failure = U_ZERO_ERROR;
  u_strFromUTF8(units.data(), static_cast<std::int32_t>(units.size()), &length, bytes.data(),
                static_cast<std::int32_t>(bytes.size()), &failure);
  if (U_FAILURE(failure)) return std::nullopt;
  units.resize(static_cast<std::size_t>(length));
  return units;
}

std::u16string icuLossyDecode(std::string_view bytes) {
  std::u16string units(bytes.size() + 1, u'\0');
  std::int32_t length = 0;
  UErrorCode failure = U_ZERO_ERROR;
  u_strFromUTF8WithSub(units.data(), static_cast<std::int32_t>(units.size()), &length, bytes.data(),
                       static_cast<std::int32_t>(bytes.size()), 0xFFFD, nullptr, &failure);
  units.resize(static_cast<std::size_t>(length));
  return units;
}

std::optional<std::string> icuEncode(std::u16string_view units, bool isLossy) {
  std::string bytes(3 * units.size() + 1, '\0');
  std::int32_t length = 0;
  UErrorCode failure = U_ZERO_ERROR;
  u_strToUTF8WithSub(bytes.data(), static_cast<std::int32_t>(bytes.size()), &length, units.data(),
                     static_cast<std::int32_t>(units.size()), isLossy ? 0xFFFD : -1, nullptr,
                     &failure);
  if (U_FAILURE(failure)) return std::nullopt;
  bytes.resize(static_cast<std::size_t>(length));
  return bytes;
}

/// Copies into blocks of exactly this size, so that a sanitizer sees a look behind the end.
void expectSameAsICU(std::string_view bytes) {
  const std::vector<char> block(bytes.begin(), bytes.end());
  const std::string_view exact(block.data(), block.size());
  const auto decoded = utf16FromUTF8(exact);
  ASSERT_EQ(isUTF8(exact), decoded.has_value()) << testing::PrintToString(bytes);
  ASSERT_EQ(decoded, icuDecode(bytes)) << testing::PrintToString(bytes);
  const std::u16string lossy = utf16FromLossyUTF8(exact);
  ASSERT_EQ(lossy, icuLossyDecode(bytes)) << testing::PrintToString(bytes);
  if (decoded) {
    ASSERT_EQ(lossy, *decoded);
    ASSERT_EQ(utf8FromUTF16(*decoded), bytes);
  }
}

void expectSameAsICU(std::u16string_view units) {
  const std::vector<char16_t> block(units.begin(), units.end());
  const std::u16string_view exact(block.data(), block.size());
  ASSERT_EQ(utf8FromUTF16(exact), icuEncode(units, false));
  ASSERT_EQ(lossyUTF8FromUTF16(exact), icuEncode(units, true));
}

/// Offsets that put what is tested at every place of a step, and behind a block.
constexpr std::size_t kOffsets[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 31, 32, 33, 47, 48};

TEST(UTF8, EveryCharacterGoesThereAndBack) {
  for (char32_t character = 0; character <= 0x10FFFF; ++character) {
    if (character >= 0xD800 && character < 0xE000) continue;
    std::u16string units;
    if (character > 0xFFFF) {
      units += static_cast<char16_t>(0xD7C0 + (character >> 10));
      units += static_cast<char16_t>(0xDC00 | (character & 0x3FF));
    } else {
      units += static_cast<char16_t>(character);
    }
    const auto bytes = utf8FromUTF16(units);
    ASSERT_EQ(bytes, icuEncode(units, false)) << std::uint32_t{character};
    ASSERT_EQ(utf16FromUTF8(*bytes), units) << std::uint32_t{character};
  }
}

TEST(UTF8, EverySequenceOfTwoBytesIsJudgedAsByICU) {
  for (unsigned first = 0; first < 256; ++first)
    for (unsigned second = 0; second < 256; ++second)
      expectSameAsICU(std::string{static_cast<char>(first), static_cast<char>(second)});
}

TEST(UTF8, EverySequenceOfThreeAndFourBytesIsJudgedAsByICU) {
  const unsigned edges[] = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC2, 0xFF};
  for (unsigned lead = 0xE0; lead < 0x100; ++lead)
    for (unsigned second = 0; second < 256; ++second)
      for (unsigned third : edges)
        for (unsigned fourth : edges)
          expectSameAsICU(std::string{static_cast<char>(lead), static_cast<char>(second),
                                      static_cast<char>(third), static_cast<char>(fourth)});
}

TEST(UTF8, MalformedSequences) {
  struct Case {
    const char* rule;
    std::string bytes;
    std::u16string lossy;
  };
  const Case cases[] = {
      {"a trailing byte alone", "a\x80z", u"a\xFFFDz"},
      {"an overlong slash", "\xC0\xAF", u"\xFFFD\xFFFD"},
      {"an overlong form of three bytes", "\xE0\x80\xAF", u"\xFFFD\xFFFD\xFFFD"},
      {"an overlong form of four bytes", "\xF0\x80\x80\xAF", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
      {"a surrogate", "\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD"},
      {"a pair of surrogates", "\xED\xA0\xBD\xED\xB8\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD\xFFFD\xFFFD"},
      {"beyond the last character", "\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
      {"leads that no character has", "\xF5\xFE\xFF", u"\xFFFD\xFFFD\xFFFD"},
      {"a cut sequence is one replacement", "\xF0\x9F\x98", u"\xFFFD"},
      {"cut by another character", "\xE2\x82z", u"\xFFFDz"},
      {"cut by another lead", "\xE2\x82\xC3\xA9", u"\xFFFD\u00E9"},
      {"a sequence before and one after", "\u00E9\xFF\u00E9", u"\u00E9\xFFFD\u00E9"},
  };
  for (const auto& [rule, bytes, lossy] : cases) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(utf16FromUTF8(bytes), std::nullopt);
    EXPECT_EQ(utf16FromLossyUTF8(bytes), lossy);
    for (std::size_t offset : kOffsets) {
      const std::string before(offset, 'x');
      expectSameAsICU(before + bytes);
      expectSameAsICU(before + bytes + before);
    }
  }
}

TEST(UTF8, TextCutAnywhereIsJudgedAsByICU) {
  const std::string text = "plain \u00E9\u00E8 \u0416\u0444 \u96FB\u5B50 \U0001F600\U0001F600 end";
  for (std::size_t offset : kOffsets)
    for (std::size_t from = 0; from < text.size(); ++from)
      for (std::size_t size = 0; size <= text.size() - from; ++size)
        expectSameAsICU(std::string(offset, 'x') + text.substr(from, size));
}

TEST(UTF8, RandomBytesAreJudgedAsByICU) {
  std::mt19937 random(1);
  const std::string_view pieces[] = {
      "a",    "plain ascii text", "\u00E9", "\u96FB",      "\U0001F600", "\x80",
      "\xC3", "\xE2\x82",         "\xF0",   "\xED\xA0\x80"};
  for (int round = 0; round < 20000; ++round) {
    std::string bytes;
    const bool isMostlyValid = round % 2;
    for (std::size_t count = random() % 40; count; --count)
      bytes += pieces[random() % (isMostlyValid ? 5 : std::size(pieces))];
    expectSameAsICU(bytes);
    for (char& byte : bytes)
      if (random() % 64 == 0) byte = static_cast<char>(random());
    expectSameAsICU(bytes);
  }
}

TEST(UTF8, RandomUnitsAreJudgedAsByICU) {
  std::mt19937 random(2);
  const char16_t edges[] = {0, 'a', 0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFFFF};
  for (int round = 0; round < 20000; ++round) {
    std::u16string units;
    for (std::size_t count = random() % 60; count; --count) {
      const unsigned kind = random() % 16;
      if (kind < 8)
        units += static_cast<char16_t>('a' + random() % 26);
      else if (kind < 14)
        units += edges[random() % std::size(edges)];
      else if (kind < 15)
        units += u"\U0001F600";
      else if (round % 2)
        units += static_cast<char16_t>(0xD800 + random() % 0x800);
    }
    expectSameAsICU(units);
  }
}

TEST(UTF8, LoneSurrogates) {
  struct Case {
    const char* rule;
    std::u16string units;
    std::string lossy;
  };
  const Case cases[] = {
      {"a first half alone", u"a\xD800", "a\uFFFD"},
      {"a second half alone", u"\xDC00z", "\uFFFDz"},
      {"in the wrong order", u"\xDC00\xD800", "\uFFFD\uFFFD"},
      {"a first half before a pair", u"\xD800\xD83D\xDE00", "\uFFFD\U0001F600"},
  };
  for (const auto& [rule, units, lossy] : cases) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(utf8FromUTF16(units), std::nullopt);
    EXPECT_EQ(lossyUTF8FromUTF16(units), lossy);
    for (std::size_t offset : kOffsets)
      expectSameAsICU(std::u16string(offset, u'x') + units + std::u16string(offset, u'x'));
  }
}

TEST(UTF8, TheASCIIPrefixEndsAtTheFirstOtherCharacter) {
  for (std::size_t length = 0; length < 140; ++length) {
    EXPECT_EQ(asciiPrefixLength(std::string(length, '\x7F')), length);
    EXPECT_EQ(asciiPrefixLength(std::u16string(length, u'\x7F')), length);
    for (std::size_t at = 0; at < length; ++at) {
      std::string bytes(length, 'x');
      bytes[at] = '\x80';
      ASSERT_EQ(asciiPrefixLength(bytes), at) << length;
      for (char16_t other : {u'\x80', u'\x100', u'\x8000'}) {
        std::u16string units(length, u'x');
        units[at] = other;
        ASSERT_EQ(asciiPrefixLength(units), at) << length;
      }
    }
  }
}

TEST(UTF8, NothingIsNothing) {
  EXPECT_EQ(asciiPrefixLength(std::string_view()), 0U);
  EXPECT_EQ(utf16FromUTF8({}), u"");
  EXPECT_EQ(utf16FromLossyUTF8({}), u"");
  EXPECT_EQ(utf8FromUTF16({}), "");
  EXPECT_EQ(lossyUTF8FromUTF16({}), "");
}

TEST(UTF8, AZeroCharacterIsACharacter) {
  EXPECT_EQ(utf16FromUTF8(std::string_view("a\0b", 3)), std::u16string(u"a\0b", 3));
  EXPECT_EQ(utf8FromUTF16({u"a\0b", 3}), std::string("a\0b", 3));
}

/// How much more than it needs a text holds, in characters.
template <class Text>
std::size_t spareRoom(const Text& text) {
  return text.capacity() - text.size();
}

TEST(UTF8, LongTextsHaveRoomForEveryWidth) {
  std::u16string units;
  for (std::size_t i = 0; i < 20'000; ++i) {
    units += u"a\u00E9\u4E2D\U0001F600";
    if (i % 1000 == 0) units += u'\xD800';
  }
  for (std::size_t cut = 0; cut < 20; ++cut)
    expectSameAsICU(std::u16string_view(units).substr(cut, units.size() - 2 * cut));
  for (char16_t one : {u'a', u'\u00E9', u'\u4E2D', u'\xDC00'})
    expectSameAsICU(std::u16string(100'001, one));
}

TEST(UTF8, LongTextsKeepNoMoreThanTheyNeed) {
  for (std::size_t length : {std::size_t{10'000}, std::size_t{1'000'000}}) {
    SCOPED_TRACE(length);
    const std::u16string latin(length, u'a');
    std::u16string mixed = latin;
    mixed.back() = u'\u00E9';
    EXPECT_LT(spareRoom(*utf8FromUTF16(latin)), 4096U);
    EXPECT_LT(spareRoom(*utf8FromUTF16(mixed)), 4096U);
    EXPECT_LT(spareRoom(lossyUTF8FromUTF16(mixed + u'\xD800')), 4096U);
    std::string chinese;
    for (std::size_t i = 0; i < length; ++i) chinese += "\xE4\xB8\xAD";
    EXPECT_LT(spareRoom(utf16FromLossyUTF8(chinese + '\xFF')), 4096U);
  }
}

}  // namespace
}  // namespace kbx
