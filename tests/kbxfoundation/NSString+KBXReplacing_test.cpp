#include "NSString+KBXReplacing.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/objects/NSNumber.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace std::string_literals;

NSString* const kAbsent = nullptr;

void expectCopy(const Ref<NSString>& result, NSString* receiver) {
  EXPECT_TRUE(isEqual(result, receiver));
  EXPECT_FALSE(isSame(result.get(), receiver));
}

TEST(NSStringKBXReplacing, JoiningPutsTheReceiverBetweenTheElements) {
  auto array = NSArray::arrayWithObjects({"a"_ns, "é"_ns, NSNumber::numberWithInteger(3)});
  EXPECT_EQ(text(kbxJoin(", "_ns, array)), "a, é, 3");
  EXPECT_EQ(text(kbxJoin(""_ns, array)), "aé3");
  EXPECT_EQ(text(kbxJoin(","_ns, NSArray::array())), "");
  EXPECT_EQ(kbxJoin(","_ns, nullptr), nullptr);
  EXPECT_EQ(kbxJoin(nullptr, array), nullptr);
}

TEST(NSStringKBXReplacing, ASuffixIsEnsuredOnce) {
  EXPECT_EQ(text(kbxStringByEnsuringSuffix("a"_ns, "/"_ns)), "a/");
  EXPECT_EQ(text(kbxStringByEnsuringSuffix("a"_ns, "é"_ns)), "aé");
  EXPECT_EQ(text(kbxStringByEnsuringSuffix(""_ns, "/"_ns)), "/");
  EXPECT_EQ(text(kbxStringByEnsuringSuffix("A/"_ns, "a/"_ns)), "A/a/") << "case counts";
  expectCopy(kbxStringByEnsuringSuffix("a/"_ns, "/"_ns), "a/"_ns);
  expectCopy(kbxStringByEnsuringSuffix("aé"_ns, "é"_ns), "aé"_ns);
  expectCopy(kbxStringByEnsuringSuffix("a"_ns, ""_ns), "a"_ns);
  EXPECT_EQ(kbxStringByEnsuringSuffix(nullptr, "/"_ns), nullptr);
  EXPECT_EQ(nameRaisedBy([] { kbxStringByEnsuringSuffix("a"_ns, nullptr); }),
            "NSInvalidArgumentException");
}

TEST(NSStringKBXReplacing, EveryOccurrenceIsReplaced) {
  struct Case {
    const char *text, *target, *replacement, *result;
  };
  for (auto [sample, target, replacement, result] : {Case{"a-b-c", "-", "+", "a+b+c"},
                                                     {"aaa", "aa", "b", "ba"},
                                                     {"aaa", "a", "aa", "aaaaaa"},
                                                     {"Aa", "a", "x", "Ax"},
                                                     {"éaé", "é", "e", "eae"},
                                                     {"a b", " ", "", "ab"},
                                                     {"a", "", "x", "a"},
                                                     {"e\u0301", "e", "x", "x\u0301"},
                                                     {"é", "e\u0301", "x", "é"},
                                                     {"", "a", "b", ""}})
    EXPECT_EQ(text(kbxStringByReplacingString(string(sample), string(target), string(replacement))),
              result);
}

TEST(NSStringKBXReplacing, TheFirstOccurrenceAloneIsReplaced) {
  EXPECT_EQ(text(kbxStringByReplacingFirstOccurrenceOfString("a-b-c"_ns, "-"_ns, "é"_ns)), "aéb-c");
  EXPECT_EQ(text(kbxStringByReplacingFirstOccurrenceOfString("aaa"_ns, "aa"_ns, ""_ns)), "a");
  for (NSString* target : {"x"_ns, "A"_ns, ""_ns})
    expectCopy(kbxStringByReplacingFirstOccurrenceOfString("a-b"_ns, target, "y"_ns), "a-b"_ns);
}

TEST(NSStringKBXReplacing, ReplacingNeedsBothTexts) {
  for (auto replace : {&kbxStringByReplacingString, &kbxStringByReplacingFirstOccurrenceOfString}) {
    EXPECT_EQ(nameRaisedBy([=] { replace("a"_ns, nullptr, "b"_ns); }),
              "NSInvalidArgumentException");
    EXPECT_EQ(nameRaisedBy([=] { replace("a"_ns, "b"_ns, nullptr); }),
              "NSInvalidArgumentException");
    EXPECT_EQ(replace(nullptr, "a"_ns, "b"_ns), nullptr);
  }
}

TEST(NSStringKBXReplacing, KeysAreExpandedInTheirOrder) {
  auto dictionary = NSDictionary::dictionaryWithPairs({{"name"_ns, "Ada é"_ns}, {"x"_ns, "1"_ns}});
  EXPECT_EQ(text(kbxStringByExpandingKeysInDictionary("name: x, xname"_ns, dictionary)),
            "Ada é: 1, 1Ada é");
}

TEST(NSStringKBXReplacing, ALaterKeyChangesWhatAnEarlierOneInserted) {
  auto dictionary = NSDictionary::dictionaryWithPairs({{"a"_ns, "b"_ns}, {"b"_ns, "c"_ns}});
  EXPECT_EQ(text(kbxStringByExpandingKeysInDictionary("ab"_ns, dictionary)), "cc");
  auto reversed = NSDictionary::dictionaryWithPairs({{"b"_ns, "c"_ns}, {"a"_ns, "b"_ns}});
  EXPECT_EQ(text(kbxStringByExpandingKeysInDictionary("ab"_ns, reversed)), "bc");
}

TEST(NSStringKBXReplacing, AnEmptyDictionaryGivesTheReceiverItself) {
  auto receiver = string("abc");
  EXPECT_TRUE(
      isSame(kbxStringByExpandingKeysInDictionary(receiver, NSDictionary::dictionary()).get(),
             receiver.get()));
  EXPECT_TRUE(
      isSame(kbxStringByExpandingKeysInDictionary(receiver, nullptr).get(), receiver.get()));
  EXPECT_EQ(kbxStringByExpandingKeysInDictionary(nullptr, NSDictionary::dictionary()), nullptr);
}

TEST(NSStringKBXReplacing, KeysAndValuesAreTexts) {
  auto number = NSNumber::numberWithInteger(1);
  for (auto dictionary : {NSDictionary::dictionaryWithPairs({{"a"_ns, number}}),
                          NSDictionary::dictionaryWithPairs({{number, "a"_ns}})})
    EXPECT_EQ(nameRaisedBy([&] { kbxStringByExpandingKeysInDictionary("a"_ns, dictionary); }),
              "NSInvalidArgumentException");
}

TEST(NSStringKBXReplacing, ChunksHaveTheSeparatorBetweenThem) {
  struct Case {
    const char* text;
    std::size_t size;
    const char *separator, *result;
  };
  for (auto [sample, size, separator, result] : {Case{"abcdefg", 3, "-", "abc-def-g"},
                                                 {"abcdef", 3, "-", "abc-def"},
                                                 {"abc", 1, ", ", "a, b, c"},
                                                 {"abc", 5, "-", "abc"},
                                                 {"aébc", 2, "é", "aéébc"},
                                                 {"abcd", 2, "", "abcd"},
                                                 {"", 3, "-", ""},
                                                 {"a", 0, "-", "a"},
                                                 {"", 0, "-", ""}})
    EXPECT_EQ(text(kbxStringByChunking(string(sample), size, string(separator))), result);
  EXPECT_EQ(text(kbxStringByChunking("abcd"_ns, 2, nullptr)), "abcd");
  EXPECT_EQ(kbxStringByChunking("😀"_ns, 1, "-"_ns)->length(), 3u) << "by units";
  EXPECT_EQ(kbxStringByChunking(nullptr, 1, "-"_ns), nullptr);
}

TEST(NSStringKBXReplacingDeathTest, ChunksOfNothingAreADivisionByZero) {
  EXPECT_DEATH(kbxStringByChunking("ab"_ns, 0, "-"_ns), "");
}

TEST(NSStringKBXReplacing, EveryNulGoes) {
  EXPECT_EQ(text(kbxStringByTrimmingNulls(string("a\0b\0"s))), "ab");
  EXPECT_EQ(text(kbxStringByTrimmingNulls(string("\0\0é\0ü"s))), "éü");
  EXPECT_EQ(text(kbxStringByTrimmingNulls(string("\0"s))), "");
  for (NSString* string : {"ab"_ns, "é"_ns, ""_ns})
    expectCopy(kbxStringByTrimmingNulls(string), string);
  EXPECT_EQ(kbxStringByTrimmingNulls(kAbsent), nullptr);
}

}  // namespace
}  // namespace kbx
