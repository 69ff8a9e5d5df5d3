#include "platform/objects/NSString.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNumber.h"
#include "platform/text/StringEncoding.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

std::u16string units(NSString* text) {
  return text->visitUnits([](auto all) { return std::u16string(all.begin(), all.end()); });
}

Ref<NSString> wide(std::u16string_view text) { return NSString::stringWithUTF16(text); }

/// The exception's name, or "" when nothing is raised.
template <class Block>
std::string raised(Block block) {
  try {
    block();
  } catch (const Raised& raised) {
    return text(raised.exception()->name());
  }
  return "";
}

TEST(NSString, LengthAndIndicesCountUTF16Units) {
  struct Case {
    const char* utf8;
    std::u16string units;
    bool isASCII;
  };
  const Case cases[] = {{"", u"", true},
                        {"abc\x7F", u"abc\x7F", true},
                        {"\u00E9", u"\u00E9", false},
                        {"a\u96FBz", u"a\u96FBz", false},
                        {"a\U0001F600z", u"a\xD83D\xDE00z", false}};
  for (const auto& [utf8, expected, isASCII] : cases) {
    SCOPED_TRACE(utf8);
    auto made = NSString::stringWithUTF8(utf8);
    EXPECT_EQ(made->length(), expected.size());
    EXPECT_EQ(made->isASCII(), isASCII);
    for (std::size_t i = 0; i < expected.size(); ++i)
      EXPECT_EQ(made->characterAtIndex(i), expected[i]);
    EXPECT_EQ(units(made), expected);
    EXPECT_EQ(made->UTF8String(), utf8);
    EXPECT_EQ(made->lossyUTF8(), utf8);
  }
}

TEST(NSString, EveryWayOfMakingATextGivesTheSameText) {
  for (const char* utf8 : {"", "plain", "caf\u00E9", "\U0001F600"}) {
    SCOPED_TRACE(utf8);
    const std::string bytes(utf8);
    auto made = NSString::stringWithUTF8(std::string_view(bytes));
    auto data = NSData::dataWithBytes(bytes);
    const Ref<NSString> others[] = {NSString::stringWithUTF8(data.get()),
                                    NSString::stringByTakingUTF8(bytes),
                                    NSString::stringWithLossyUTF8(bytes),
                                    NSString::stringWithUTF16(units(made)),
                                    NSString::stringByTakingUTF16(units(made)),
                                    NSString::stringWithUTF8String(utf8),
                                    NSString::constant(bytes)};
    for (const auto& other : others) {
      EXPECT_TRUE(isEqual(made, other));
      EXPECT_EQ(made->hash(), other->hash());
      EXPECT_EQ(made->isASCII(), other->isASCII());
      EXPECT_EQ(made->compare(other), NSOrderedSame);
    }
  }
}

TEST(NSString, MalformedUTF8IsNoText) {
  for (const char* bytes :
       {"\x80", "a\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF"}) {
    EXPECT_EQ(NSString::stringWithUTF8(std::string_view(bytes)), nullptr);
    EXPECT_EQ(NSString::stringWithUTF8(NSData::dataWithBytes(std::string_view(bytes)).get()),
              nullptr);
    EXPECT_EQ(NSString::stringByTakingUTF8(bytes), nullptr);
    EXPECT_EQ(NSString::stringWithUTF8String(bytes), nullptr);
  }
  EXPECT_EQ(text(NSString::stringWithLossyUTF8("a\xFFz")), "a\uFFFDz");
}

TEST(NSString, NothingIsMadeOfAbsentBytes) {
  EXPECT_EQ(NSString::stringWithUTF8(static_cast<NSData*>(nullptr)), nullptr);
  EXPECT_EQ(NSString::stringWithUTF8String(nullptr), nullptr);
}

TEST(NSString, AZeroIsACharacterLikeAnyOther) {
  auto made = NSString::stringWithUTF8(std::string_view("a\0b", 3));
  EXPECT_EQ(made->length(), 3U);
  EXPECT_EQ(made->characterAtIndex(1), 0);
  EXPECT_EQ(made->UTF8String(), std::string("a\0b", 3));
  EXPECT_FALSE(isEqual(made, "a"_ns));
}

TEST(NSString, ALoneSurrogateIsKeptButHasNoUTF8) {
  for (auto lone : {u"a\xD800z", u"a\xDC00z"}) {
    auto made = wide(lone);
    EXPECT_EQ(units(made), lone);
    EXPECT_EQ(made->UTF8String(), std::nullopt);
    EXPECT_EQ(made->UTF8Data(), nullptr);
    EXPECT_EQ(made->lossyUTF8(), "a\uFFFDz");
    EXPECT_EQ(units(made->substringFromIndex(1)), std::u16string_view(lone).substr(1));
    EXPECT_TRUE(isEqual(made, wide(lone)));
  }
}

TEST(NSString, AStringOverABufferSharesIt) {
  auto data = NSData::dataWithBytes("ascii");
  auto made = NSString::stringWithUTF8(data.get());
  EXPECT_TRUE(isSame(made->UTF8Data(), data));
}

TEST(NSString, AStringOverAMutableBufferKeepsItsText) {
  auto data = NSMutableData::data();
  data->appendBytes("ascii");
  auto made = NSString::stringWithUTF8(data.get());
  data->mutableBytes()[0] = 0xFF;
  data->setLength(100000);
  EXPECT_EQ(text(made), "ascii");
}

/// As much text as stays in UTF-8, with characters of every length.
std::string longUTF8() {
  std::string bytes;
  while (bytes.size() < 5000) bytes += "caf\u00E9 \u96FB\U0001F600, ";
  return bytes;
}

TEST(NSString, LongTextThatCameAsUTF8StaysInIt) {
  const auto bytes = data(longUTF8());
  const auto made = NSString::stringWithUTF8(bytes.get());
  ASSERT_TRUE(made->keptUTF8().has_value());
  EXPECT_EQ(static_cast<const void*>(made->keptUTF8()->data()), bytes->bytes());
  EXPECT_TRUE(isSame(made->UTF8Data(), bytes));
  EXPECT_TRUE(isSame(made->dataUsingEncoding(NSUTF8StringEncoding), bytes));
  EXPECT_EQ(made->UTF8String(), bytes->view());
  EXPECT_FALSE(made->isASCII());
}

TEST(NSString, LongTextHasItsUnitsAndItsUTF8Both) {
  const auto bytes = data(longUTF8());
  const auto expected = wide(units(string(longUTF8())));
  const auto made = NSString::stringWithUTF8(bytes.get());
  EXPECT_EQ(units(made), units(expected));
  EXPECT_EQ(made->length(), expected->length());
  EXPECT_EQ(made->characterAtIndex(3), u'\u00E9');
  EXPECT_TRUE(isSame(made->UTF8Data(), bytes));
  EXPECT_EQ(made->keptUTF8(), bytes->view());
}

TEST(NSString, OtherTextKeepsItsUTF8OnlyWhereItIsASCII) {
  EXPECT_EQ("plain"_ns->keptUTF8(), "plain");
  EXPECT_EQ(string("caf\u00E9")->keptUTF8(), std::nullopt);
  EXPECT_EQ(wide(units(string(longUTF8())))->keptUTF8(), std::nullopt);
}

TEST(NSString, LongTextIsTheSameInEveryForm) {
  const std::string bytes = longUTF8();
  const auto kept = [&] { return NSString::stringWithUTF8(data(bytes).get()); };
  const auto expected = wide(units(string(bytes)));
  EXPECT_TRUE(isEqual(kept(), kept()));
  EXPECT_TRUE(isEqual(kept(), expected));
  EXPECT_TRUE(isEqual(expected, kept()));
  EXPECT_EQ(kept()->hash(), expected->hash());
  EXPECT_EQ(kept()->compare(expected), NSOrderedSame);
  EXPECT_TRUE(kept()->hasPrefix(expected) && expected->hasSuffix(kept()));
  EXPECT_EQ(expected->rangeOfString(kept()), (NSRange{0, expected->length()}));
  EXPECT_TRUE(kept()->hasPrefix(kept()) && kept()->hasPrefix(string(bytes.substr(0, 3))));
  EXPECT_FALSE(kept()->hasPrefix(string("x")) || kept()->hasPrefix(""_ns));
  EXPECT_FALSE(kept()->hasPrefix(NSString::stringWithUTF8(data(bytes + "x").get())));
  for (const auto& other : {string(bytes + "x"), wide(u"\u00E9"), string(std::string(5000, 'x'))}) {
    EXPECT_FALSE(isEqual(kept(), other));
    EXPECT_FALSE(isEqual(other, kept()));
  }
  std::string last = bytes;
  last.back() = '!';
  EXPECT_FALSE(isEqual(kept(), string(last)));
}

TEST(NSString, NoLengthOfUTF8ChangesTheText) {
  for (std::size_t length = 0; length < 3000; ++length) {
    const std::string bytes = std::string(length, 'x') + "\u00E9";
    const auto made = NSString::stringWithUTF8(data(bytes).get());
    ASSERT_EQ(made->length(), length + 1);
    ASSERT_EQ(made->UTF8String(), bytes);
    ASSERT_TRUE(isEqual(made, string(bytes)));
  }
}

TEST(NSString, MalformedUTF8IsNoTextAtAnyPlaceOfALongOne) {
  const std::string around = longUTF8();
  for (const char* malformed : {"\x80", "a\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
    for (const std::string& bytes :
         {malformed + around, around + malformed + around, around + malformed}) {
      EXPECT_EQ(string(bytes), nullptr);
      EXPECT_EQ(NSString::stringWithUTF8(data(bytes).get()), nullptr);
      EXPECT_EQ(NSString::stringByTakingUTF8(bytes), nullptr);
      EXPECT_NE(text(NSString::stringWithLossyUTF8(bytes)).find("\uFFFD"), std::string::npos);
    }
  }
}

TEST(NSString, LongTextOverAMutableBufferKeepsItsText) {
  const std::string bytes = longUTF8();
  auto buffer = NSMutableData::data();
  buffer->appendBytes(bytes);
  auto made = NSString::stringWithUTF8(buffer.get());
  buffer->mutableBytes()[0] = 0xFF;
  buffer->setLength(100000);
  EXPECT_EQ(text(made), bytes);
  EXPECT_EQ(made->characterAtIndex(0), u'c');
}

TEST(NSString, TheUTF8DataIsTheUTF8Form) {
  for (const char* utf8 : {"", "plain", "caf\u00E9"})
    EXPECT_EQ(string(utf8)->UTF8Data()->view(), utf8);
}

TEST(NSString, AConstantIsOneObjectForEachSpelling) {
  EXPECT_TRUE(isSame("abc"_ns, "abc"_ns));
  EXPECT_TRUE(isSame("abc"_ns, NSString::constant("abc")));
  EXPECT_FALSE(isSame("abc"_ns, "abd"_ns));
  EXPECT_TRUE(isSame(NSString::string(), ""_ns));
  EXPECT_EQ("caf\u00E9"_ns->length(), 4U);
}

TEST(NSString, AnImmutableTextIsItsOwnCopyAndDescription) {
  for (auto* one : {"abc"_ns, "\u00E9"_ns}) {
    EXPECT_TRUE(isSame(one->copyObject(), one));
    EXPECT_TRUE(isSame(one->description(), one));
  }
}

TEST(NSString, ComparisonOrdersTheUnits) {
  const char16_t* ordered[] = {u"",       u"A",       u"B", u"a",      u"aB",
                               u"aa",     u"a\u00E9", u"b", u"\u00E9", u"\xD83D\xDE00",
                               u"\uE000", u"\uFFFF"};
  for (std::size_t i = 0; i < std::size(ordered); ++i)
    for (std::size_t j = 0; j < std::size(ordered); ++j) {
      const auto expected = i < j   ? NSOrderedAscending
                            : i > j ? NSOrderedDescending
                                    : NSOrderedSame;
      EXPECT_EQ(wide(ordered[i])->compare(wide(ordered[j])), expected) << i << " " << j;
      EXPECT_EQ(isEqual(wide(ordered[i]), wide(ordered[j])), i == j) << i << " " << j;
    }
  EXPECT_EQ(""_ns->compare(nullptr), NSOrderedDescending);
}

TEST(NSString, ATextEqualsTextsOnly) {
  EXPECT_FALSE(isEqual("1"_ns, NSNumber::numberWithInteger(1)));
  EXPECT_FALSE("1"_ns->isEqual(nullptr));
}

TEST(NSString, PrefixesAndSuffixes) {
  struct Case {
    const char16_t *text, *part;
    bool isPrefix, isSuffix;
  };
  const Case cases[] = {{u"abc", u"ab", true, false},
                        {u"abc", u"bc", false, true},
                        {u"abc", u"abc", true, true},
                        {u"abc", u"abcd", false, false},
                        {u"abc", u"", false, false},
                        {u"", u"", false, false},
                        {u"\u00E9bc", u"\u00E9", true, false},
                        {u"abc", u"\u00E9", false, false},
                        {u"\u00E9bc", u"bc", false, true},
                        {u"bc\u00E9", u"bc", true, false},
                        {u"\xD83D\xDE00", u"\xD83D", true, false}};
  for (const auto& [whole, part, isPrefix, isSuffix] : cases) {
    SCOPED_TRACE(wide(part)->lossyUTF8() + " in " + wide(whole)->lossyUTF8());
    EXPECT_EQ(wide(whole)->hasPrefix(wide(part)), isPrefix);
    EXPECT_EQ(wide(whole)->hasSuffix(wide(part)), isSuffix);
  }
  EXPECT_FALSE("abc"_ns->hasPrefix(nullptr));
  EXPECT_FALSE("abc"_ns->hasSuffix(nullptr));
}

TEST(NSString, TheFirstPlaceIsFound) {
  struct Case {
    const char16_t *text, *part;
    std::uint64_t at;
  };
  const Case cases[] = {{u"abcabc", u"bc", 1},
                        {u"abc", u"abc", 0},
                        {u"abc", u"c", 2},
                        {u"abc", u"d", NSNotFound},
                        {u"abc", u"abcd", NSNotFound},
                        {u"abc", u"", NSNotFound},
                        {u"", u"a", NSNotFound},
                        {u"\u00E9abcabc", u"bc", 2},
                        {u"abc", u"\u00E9", NSNotFound},
                        {u"a\u00E9\u00E8", u"\u00E9\u00E8", 1},
                        {u"a\u0161", u"\u0161", 1},
                        {u"\u6100", u"a", NSNotFound},
                        {u"\u6161\u0061", u"a", 1}};
  for (const auto& [whole, part, at] : cases) {
    SCOPED_TRACE(wide(part)->lossyUTF8() + " in " + wide(whole)->lossyUTF8());
    const NSRange expected{at, at == NSNotFound ? 0 : std::u16string_view(part).size()};
    EXPECT_EQ(wide(whole)->rangeOfString(wide(part)), expected);
  }
  EXPECT_EQ("abc"_ns->rangeOfString(nullptr), kRangeNotFound);
}

TEST(NSString, SearchAgreesWithAPlainSearch) {
  std::mt19937 random(1);
  for (int round = 0; round < 4000; ++round) {
    auto letters = [&](std::size_t size) {
      std::u16string made;
      while (made.size() < size) made += u"ab\u00E9"[random() % (round % 2 ? 3 : 2)];
      return made;
    };
    const std::u16string whole = letters(random() % 300);
    const std::u16string part = letters(1 + random() % (round % 3 ? 4 : 50));
    const std::size_t at = whole.find(part);
    ASSERT_EQ(wide(whole)->rangeOfString(wide(part)).location,
              at == std::u16string::npos ? NSNotFound : at);
  }
}

TEST(NSString, SearchTakesTimeInProportionToTheTexts) {
  for (const char16_t* letter : {u"a", u"\u0430"}) {
    std::u16string whole, part;
    while (whole.size() < 2000000) whole += letter;
    part = whole.substr(0, 500000) + u"b" + whole.substr(0, 500000);
    // Place by place this would take 10^12 comparisons.
    EXPECT_EQ(wide(whole)->rangeOfString(wide(part)), kRangeNotFound);
    EXPECT_EQ(wide(whole)->rangeOfString(wide(whole.substr(1))).location, 0U);
    EXPECT_EQ(wide(whole)->componentsSeparatedByString(wide(part))->count(), 1U);
  }
}

TEST(NSString, Substrings) {
  auto pair = wide(u"a\xD83D\xDE00z");
  EXPECT_EQ(units(pair->substringWithRange({1, 2})), u"\xD83D\xDE00");
  EXPECT_EQ(units(pair->substringWithRange({2, 1})), u"\xDE00");
  EXPECT_TRUE(pair->substringToIndex(1)->isASCII());
  EXPECT_TRUE(isEqual(pair->substringToIndex(1), "a"_ns));
  EXPECT_EQ(text("abc"_ns->substringFromIndex(1)), "bc");
  EXPECT_EQ(text("abc"_ns->substringFromIndex(3)), "");
  EXPECT_EQ(text("abc"_ns->substringToIndex(0)), "");
  EXPECT_FALSE(isSame("abc"_ns->substringToIndex(3), "abc"_ns));
}

TEST(NSString, WhatReachesPastTheEndRaises) {
  for (auto* one : {"abc"_ns, "ab\u00E9"_ns}) {
    EXPECT_EQ(raised([=] { one->characterAtIndex(3); }), "NSRangeException");
    EXPECT_EQ(raised([=] { one->characterAtIndex(SIZE_MAX); }), "NSRangeException");
    EXPECT_EQ(raised([=] { one->substringFromIndex(4); }), "NSRangeException");
    EXPECT_EQ(raised([=] { one->substringToIndex(4); }), "NSRangeException");
    EXPECT_EQ(raised([=] { one->substringWithRange({2, 2}); }), "NSRangeException");
    EXPECT_EQ(raised([=] { one->substringWithRange({1, UINT64_MAX}); }), "NSRangeException");
    EXPECT_EQ(raised([=] { one->substringWithRange({UINT64_MAX, 1}); }), "NSRangeException");
    EXPECT_EQ(raised([=] { one->substringWithRange(kRangeNotFound); }), "NSRangeException");
  }
}

TEST(NSString, AppendingMixesBothForms) {
  EXPECT_EQ(units("ab"_ns->stringByAppendingString("c"_ns)), u"abc");
  EXPECT_EQ(units("ab"_ns->stringByAppendingString("\u00E9"_ns)), u"ab\u00E9");
  EXPECT_EQ(units("\u00E9"_ns->stringByAppendingString("c"_ns)),
            u"\u00E9"
            u"c");
  EXPECT_EQ(units(wide(u"\xD83D")->stringByAppendingString(wide(u"\xDE00"))), u"\xD83D\xDE00");
  EXPECT_EQ(raised([] { "ab"_ns->stringByAppendingString(nullptr); }),
            "NSInvalidArgumentException");
}

TEST(NSString, OccurrencesAreReplacedFromLeftToRight) {
  struct Case {
    const char16_t *text, *target, *replacement, *result;
  };
  const Case cases[] = {{u"aXbXc", u"X", u"--", u"a--b--c"},
                        {u"XX", u"X", u"", u""},
                        {u"aaa", u"aa", u"b", u"ba"},
                        {u"abc", u"", u"-", u"abc"},
                        {u"abc", u"d", u"-", u"abc"},
                        {u"abc", u"b", u"\u00E9",
                         u"a\u00E9"
                         u"c"},
                        {u"a\u00E9", u"\u00E9", u"e", u"ae"},
                        {u"a\r\n\u00E9\r\n", u"\r\n", u"\n", u"a\n\u00E9\n"}};
  for (const auto& [whole, target, replacement, result] : cases) {
    SCOPED_TRACE(wide(whole)->lossyUTF8());
    auto replaced = wide(whole)->stringByReplacingOccurrences(wide(target), wide(replacement));
    EXPECT_EQ(units(replaced), result);
    EXPECT_TRUE(isEqual(replaced, wide(result)));
  }
  EXPECT_EQ(text("aXb"_ns->stringByReplacingOccurrences("X"_ns, nullptr)), "ab");
  EXPECT_EQ(text("aXb"_ns->stringByReplacingOccurrences(nullptr, "-"_ns)), "aXb");
}

TEST(NSString, ComponentsAreOneMoreThanSeparators) {
  struct Case {
    const char *text, *separator;
    std::vector<std::string> pieces;
  };
  const Case cases[] = {{"a,b", ",", {"a", "b"}},
                        {"", ",", {""}},
                        {",", ",", {"", ""}},
                        {"a", ",", {"a"}},
                        {"a,,b,", ",", {"a", "", "b", ""}},
                        {"abc", "", {"abc"}},
                        {"a\u00E9b", "\u00E9", {"a", "b"}},
                        {"\u00E9--b", "--", {"\u00E9", "b"}}};
  for (const auto& [whole, separator, pieces] : cases) {
    SCOPED_TRACE(whole);
    std::vector<std::string> found;
    auto components = string(whole)->componentsSeparatedByString(string(separator));
    for (const auto& piece : *components) found.push_back(text(cast<NSString>(piece)));
    EXPECT_EQ(found, pieces);
  }
  EXPECT_EQ("a,b"_ns->componentsSeparatedByString(nullptr)->count(), 1U);
}

TEST(NSString, TheLastPathComponent) {
  struct Case {
    const char *path, *last;
  };
  for (auto [path, last] : {Case{"", ""},
                            {"/", "/"},
                            {"///", "/"},
                            {"a.eml", "a.eml"},
                            {"/a/b.eml", "b.eml"},
                            {"/a/b.eml/", "b.eml"},
                            {"/a//b.eml//", "b.eml"},
                            {"a/", "a"},
                            {"/caf\u00E9/\u96FB.eml", "\u96FB.eml"},
                            {"/caf\u00E9/plain", "plain"}}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(text(string(path)->lastPathComponent()), last);
    EXPECT_EQ(string(path)->lastPathComponent()->hash(), string(last)->hash());
  }
}

}  // namespace
}  // namespace kbx
