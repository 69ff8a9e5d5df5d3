#include "NSData+KBX.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "platform/objects/NSException.h"
#include "platform/text/NSCharacterSet.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace std::string_literals;

std::string reason(NSException* exception) {
  return exception ? text(exception->reason()) : "nothing was raised";
}

NSRange rangeOf(std::string_view bytes, std::string_view pattern) {
  return kbxRangeOfData(data(bytes), data(pattern));
}
NSRange rangeOf(std::string_view bytes, std::string_view pattern, NSRange range) {
  return kbxRangeOfData(data(bytes), data(pattern), range);
}

/// The search as it is told: candidate by candidate.
NSRange plainFind(std::string_view bytes, std::string_view pattern, NSRange range) {
  const std::uint64_t n = bytes.size(), m = pattern.size();
  if (m == 0) return {range.location, 0};
  if (range.location >= n || range.length > n - range.location || m > range.length)
    return kRangeNotFound;
  for (std::uint64_t at = range.location; at <= range.location + range.length - m; ++at)
    if (bytes.substr(at, m) == pattern) return {at, m};
  return kRangeNotFound;
}

// ---- Bytes -------------------------------------------------------------------------------

TEST(NSDataKBX, OneByteIsAppendedOfWhichOnlyTheLowBitsCount) {
  auto bytes = NSMutableData::data();
  for (int byte : {0x41, 0, 0x142, -1}) kbxAppendByte(bytes, byte);
  EXPECT_EQ(text(bytes), "A\0B\xFF"s);
}

TEST(NSDataKBX, ACStringGivesTheBytesBeforeItsZero) {
  EXPECT_EQ(text(kbxDataWithCString("abc\0def")), "abc");
  EXPECT_EQ(kbxDataWithCString("")->length(), 0u);
}

TEST(NSDataKBX, AMissingCStringIsAProgrammingError) {
  RecordingLog log;
  EXPECT_EQ(reason(raisedBy([] { kbxDataWithCString(nullptr); })),
            "Precondition Failed: string at NSData+KBX:27 +kbxDataWithCString:");
  EXPECT_EQ(reason(raisedBy([] { kbxSubdataFromCString(data("a"), nullptr); })),
            "Precondition Failed: string at NSData+KBX:27 +kbxDataWithCString:");
  EXPECT_EQ(reason(raisedBy([] { kbxDataByReplacingData(data("a"), nullptr, data("b")); })),
            "Precondition Failed: data at NSData+KBX:57 -kbxRangeOfData:range:");
}

// ---- Searching ---------------------------------------------------------------------------

TEST(NSDataKBX, TheFirstMatchIsFound) {
  EXPECT_EQ(rangeOf("xxabcabc", "abc"), NSMakeRange(2, 3));
  EXPECT_EQ(rangeOf("xxabcabc", "abc", {3, 5}), NSMakeRange(5, 3));
  EXPECT_EQ(rangeOf("abc", "abc"), NSMakeRange(0, 3));
  EXPECT_EQ(rangeOf("aab", "ab"), NSMakeRange(1, 2));
  EXPECT_EQ(rangeOf("a\0b\0c"s, "\0c"s), NSMakeRange(3, 2));
}

TEST(NSDataKBX, AnEmptyPatternIsFoundAtTheStartOfWhateverRange) {
  EXPECT_EQ(rangeOf("", ""), NSMakeRange(0, 0));
  EXPECT_EQ(rangeOf("abc", "", {7, 0}), NSMakeRange(7, 0));
  EXPECT_EQ(rangeOf("abc", "", {UINT64_MAX, UINT64_MAX}), NSMakeRange(UINT64_MAX, 0));
}

TEST(NSDataKBX, WhatIsNotThereIsNotFound) {
  struct Case {
    const char *rule, *bytes, *pattern;
    NSRange range;
  };
  for (auto [rule, bytes, pattern, range] :
       {Case{"an empty buffer", "", "a", {0, 0}},
        Case{"a range that starts at the end", "abc", "c", {3, 0}},
        Case{"a range behind the end", "abc", "c", {4, 1}},
        Case{"a range that reaches past the end", "abc", "c", {1, 3}},
        Case{"a range that overflows", "abc", "c", {1, UINT64_MAX}},
        Case{"a pattern longer than the range", "abc", "abc", {0, 2}},
        Case{"a match that begins in the range and ends behind it", "abc", "bc", {0, 2}},
        Case{"a match before the range", "abc", "a", {1, 2}},
        Case{"other bytes", "abc", "d", {0, 3}}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(rangeOf(bytes, pattern, range), NSMakeRange(0x7FFFFFFFFFFFFFFF, 0));
  }
}

TEST(NSDataKBX, TheSearchFindsWhatAPlainOneFinds) {
  std::mt19937 random(11);
  for (int round = 0; round < 20000; ++round) {
    std::string bytes(random() % 120, 'a'), pattern(random() % 6, 'a');
    for (char& byte : bytes) byte = static_cast<char>('a' + random() % 3);
    for (char& byte : pattern) byte = static_cast<char>('a' + random() % 3);
    const NSRange range{random() % 20, random() % 120};
    ASSERT_EQ(rangeOf(bytes, pattern, range), plainFind(bytes, pattern, range))
        << bytes << " " << pattern << " " << range.location << " " << range.length;
  }
}

TEST(NSDataKBX, TheSearchIsRightWhereItsCandidatesMislead) {
  // First and last byte match everywhere, the middle nowhere but at the end.
  std::string bytes(5107, 'a');
  bytes[5003] = 'b';
  EXPECT_EQ(rangeOf(bytes, "aaabaaa"), NSMakeRange(5000, 7));
  EXPECT_EQ(rangeOf(std::string(5000, 'a'), "aaabaaa"), kRangeNotFound);
}

TEST(NSDataKBX, AMissingPatternIsAProgrammingError) {
  RecordingLog log;
  EXPECT_EQ(reason(raisedBy([] { kbxRangeOfData(data("a"), nullptr); })),
            "Precondition Failed: data at NSData+KBX:57 -kbxRangeOfData:range:");
  EXPECT_EQ(reason(raisedBy([] { kbxContainsData(data("a"), nullptr); })),
            "Precondition Failed: data at NSData+KBX:57 -kbxRangeOfData:range:");
  EXPECT_EQ(reason(raisedBy([] { kbxRangeOfString(data("a"), nullptr); })),
            "Precondition Failed: string at NSData+KBX:111 -kbxRangeOfString:");
}

TEST(NSDataKBX, ContainsAsksWhetherItIsFound) {
  EXPECT_TRUE(kbxContainsData(data("abc"), data("bc")));
  EXPECT_FALSE(kbxContainsData(data("abc"), data("cb")));
  EXPECT_TRUE(kbxContainsString(data("Grüße"), string("üß")));
  EXPECT_FALSE(kbxContainsString(data("Gr\xFC\xDF"
                                      "e"),
                                 string("üß")));
}

TEST(NSDataKBX, ATextIsSearchedForAsUTF8) {
  EXPECT_EQ(kbxRangeOfString(data("Grüße"), string("ß")), NSMakeRange(4, 2));
  EXPECT_EQ(kbxRangeOfString(data("abc"), NSString::stringWithUTF16(u"\xD800")), kRangeNotFound);
}

TEST(NSDataKBX, ASubdataStartsWithOrBehindTheMatch) {
  auto bytes = data("key: value: x");
  EXPECT_EQ(text(kbxSubdataStartingWithCString(bytes, ": ")), ": value: x");
  EXPECT_EQ(text(kbxSubdataFromCString(bytes, ": ")), "value: x");
  EXPECT_EQ(text(kbxSubdataFromCString(bytes, "x")), "");
  EXPECT_EQ(text(kbxSubdataStartingWithCString(bytes, "none")), "");
  EXPECT_EQ(text(kbxSubdataFromCString(bytes, "none")), "");
  EXPECT_EQ(text(kbxSubdataFromCString(bytes, "")), "key: value: x");
}

// ---- Replacing and filtering -------------------------------------------------------------

TEST(NSDataKBX, EveryOccurrenceIsReplacedFromLeftToRight) {
  struct Case {
    const char *rule, *bytes, *target, *replacement, *result;
  };
  for (auto [rule, bytes, target, replacement, result] :
       {Case{"matches do not overlap", "aaa", "aa", "b", "ba"},
        Case{"replaced text is not searched again", "ab", "a", "aa", "aab"},
        Case{"a match at the end", "xa", "a", "b", "xb"},
        Case{"a match at the start", "ax", "a", "", "x"},
        Case{"the target longer than the buffer", "a", "aa", "b", "a"},
        Case{"nothing but matches", "aa", "a", "", ""}, Case{"none", "abc", "d", "e", "abc"},
        Case{"an empty buffer", "", "d", "e", ""}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(text(kbxDataByReplacingData(data(bytes), data(target), data(replacement))), result);
  }
}

TEST(NSDataKBX, ReplacingGivesANewBufferAlways) {
  auto bytes = data("abc");
  EXPECT_FALSE(isSame(kbxDataByReplacingData(bytes, data("d"), data("e")), bytes));
}

TEST(NSDataKBX, AnEmptyTargetIsRefused) {
  EXPECT_EQ(nameRaisedBy([] { kbxDataByReplacingData(data("abc"), data(""), data("x")); }),
            "NSInvalidArgumentException");
}

TEST(NSDataKBX, EveryLineBreakBecomesALineFeed) {
  struct Case {
    const char *rule, *input, *output;
  };
  for (auto [rule, input, output] :
       {Case{"a pair is one break", "a\r\nb", "a\nb"}, Case{"a lone return counts", "a\rb", "a\nb"},
        Case{"a return before a pair is its own", "a\r\r\nb", "a\n\nb"},
        Case{"a pair and a lone one", "a\r\nb\rc\n", "a\nb\nc\n"},
        Case{"line feeds stay", "a\n\nb\n", "a\n\nb\n"},
        Case{"a line feed before a return", "a\n\rb", "a\n\nb"},
        Case{"a return at the end", "a\r", "a\n"}, Case{"nothing", "", ""}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(text(kbxDataByNormalizingLineBreaks(data(input))), output);
  }
}

TEST(NSDataKBX, OnePassDoesWhatTwoReplacementsDo) {
  std::mt19937 random(5);
  for (int round = 0; round < 20000; ++round) {
    std::string bytes(random() % 80, ' ');
    for (char& byte : bytes) byte = "\r\r\n\nab"[random() % 6];
    auto input = data(bytes);
    auto twice = kbxDataByReplacingData(kbxDataByReplacingData(input, data("\r\n"), data("\n")),
                                        data("\r"), data("\n"));
    ASSERT_EQ(text(kbxDataByNormalizingLineBreaks(input)), text(twice));
  }
}

TEST(NSDataKBX, NormalisingGivesANewBufferAlways) {
  auto bytes = data("no return in here");
  EXPECT_FALSE(isSame(kbxDataByNormalizingLineBreaks(bytes), bytes));
}

TEST(NSDataKBX, WhatIsNormalisedDoesNotChangeWithAMutableReceiver) {
  auto bytes = NSMutableData::data();
  bytes->appendBytes("no return in here");
  auto normalised = kbxDataByNormalizingLineBreaks(bytes);
  bytes->mutableBytes()[0] = 'N';
  EXPECT_EQ(text(normalised), "no return in here");
}

TEST(NSDataKBX, TheFirstLineIsDeletedWithItsBreak) {
  struct Case {
    const char *input, *output;
  };
  for (auto [input, output] : {Case{"x\r\ny", "y"},
                               {"x\n\r\ny", "\r\ny"},
                               {"x\r\r\ny", "\r\ny"},
                               {"x\ry\n", "y\n"},
                               {"\ny", "y"},
                               {"x\r\n", ""},
                               {"x\r", ""}}) {
    SCOPED_TRACE(input);
    EXPECT_EQ(text(kbxDataByDeletingFirstLine(data(input))), output);
  }
}

TEST(NSDataKBX, WithoutALineBreakTheReceiverComesBack) {
  auto bytes = data("one line");
  EXPECT_TRUE(isSame(kbxDataByDeletingFirstLine(bytes), bytes));
}

TEST(NSDataKBX, ZeroBytesAreDeleted) {
  EXPECT_EQ(text(kbxDataByDeletingNulls(data("\0a\0\0b\0"s))), "ab");
  EXPECT_EQ(text(kbxDataByDeletingNulls(data("\0"s))), "");
  for (auto bytes : {data("ab"), data("")})
    EXPECT_TRUE(isSame(kbxDataByDeletingNulls(bytes), bytes));
}

TEST(NSDataKBX, OnlyBytesInTheSetAreKept) {
  auto set = NSCharacterSet::characterSetWithCharactersInString(string("aé日"));
  // 0xE9 is é as a code point, 0xE5 is the low byte of 日.
  EXPECT_EQ(text(kbxDataByKeepingCharactersInSet(data("ab\xE9\xE5"), set)), "a\xE9");
  EXPECT_EQ(text(kbxDataByKeepingCharactersInSet(data("ab"), nullptr)), "");
  auto all = data("abc");
  auto kept = kbxDataByKeepingCharactersInSet(all, NSCharacterSet::characterSetWithRange({0, 256}));
  EXPECT_EQ(text(kept), "abc");
  EXPECT_FALSE(isSame(kept, all));
}

// ---- Slicing -----------------------------------------------------------------------------

TEST(NSDataKBX, SlicesAreConsecutive) {
  auto pieces = kbxComponentsOfLength(data("abcdef"), 3);
  ASSERT_EQ(pieces->count(), 2u);
  EXPECT_EQ(text(cast<NSData>(pieces->objectAtIndex(0))), "abc");
  EXPECT_EQ(text(cast<NSData>(pieces->objectAtIndex(1))), "def");
  EXPECT_EQ(kbxComponentsOfLength(data("abc"), 3)->count(), 1u);
  EXPECT_EQ(kbxComponentsOfLength(data("abc"), 1)->count(), 3u);
}

TEST(NSDataKBX, SlicesMustFillTheBuffer) {
  RecordingLog log;
  EXPECT_EQ(reason(raisedBy([] { kbxComponentsOfLength(data("ab"), 3); })),
            "Precondition Failed: [self length] == 0 || [self length] >= componentLength at "
            "NSData+KBX:204 -kbxComponentsOfLength:");
  EXPECT_EQ(reason(raisedBy([] { kbxComponentsOfLength(data("abcde"), 3); })),
            "Precondition Failed: [self length] % componentLength == 0 at "
            "NSData+KBX:205 -kbxComponentsOfLength:");
}

TEST(NSDataKBX, TheFirstSliceOfAnEmptyBufferLiesOutside) {
  EXPECT_EQ(nameRaisedBy([] { kbxComponentsOfLength(data(""), 3); }), "NSRangeException");
}

TEST(NSDataKBX, SlicesOfNoLengthAreRefused) {
  EXPECT_EQ(nameRaisedBy([] { kbxComponentsOfLength(data("ab"), 0); }),
            "NSInvalidArgumentException");
}

TEST(NSDataKBX, ASafeSubrangeInsideIsJustTaken) {
  RecordingLog log;
  EXPECT_EQ(text(kbxSafeSubdataWithRange(data("abcdefgh"), {2, 3}, "here"_ns)), "cde");
  EXPECT_EQ(log.lines(), std::vector<std::string>{});
}

TEST(NSDataKBX, ASafeSubrangeOutsideIsCutAndLogged) {
  struct Case {
    NSRange range;
    const char *result, *line;
  };
  for (auto [range, result, line] :
       {Case{{4, 10}, "efgh", "here NSData subrange {4, 10} is not in range {4, 4}"},
        Case{{9, 2}, "", "here NSData subrange {9, 2} is not in range {0, 0}"},
        Case{{8, 0}, "", "here NSData subrange {8, 0} is not in range {0, 0}"},
        Case{{0, UINT64_MAX},
             "abcdefgh",
             "here NSData subrange {0, 9223372036854775807} is not in range {0, 8}"},
        Case{{UINT64_MAX, 2},
             "",
             "here NSData subrange {18446744073709551615, 2} is not in range {0, 0}"}}) {
    RecordingLog log;
    EXPECT_EQ(text(kbxSafeSubdataWithRange(data("abcdefgh"), range, "here"_ns)), result);
    EXPECT_EQ(log.lines(), std::vector<std::string>{line});
  }
}

TEST(NSDataKBX, AnAbsentReceiverHasAbsentResults) {
  EXPECT_EQ(kbxRangeOfData(nullptr, data("a")), NSMakeRange(0, 0));
  EXPECT_EQ(kbxRangeOfData(nullptr, nullptr, {1, 2}), NSMakeRange(0, 0));
  EXPECT_EQ(kbxRangeOfString(nullptr, nullptr), NSMakeRange(0, 0));
  EXPECT_FALSE(kbxContainsData(nullptr, data("a")));
  EXPECT_FALSE(kbxContainsString(nullptr, "a"_ns));
  EXPECT_EQ(kbxSubdataStartingWithCString(nullptr, nullptr), nullptr);
  EXPECT_EQ(kbxSubdataFromCString(nullptr, nullptr), nullptr);
  EXPECT_EQ(kbxDataByReplacingData(nullptr, nullptr, nullptr), nullptr);
  EXPECT_EQ(kbxDataByKeepingCharactersInSet(nullptr, nullptr), nullptr);
  kbxAppendByte(nullptr, 1);
  EXPECT_EQ(kbxDataByNormalizingLineBreaks(nullptr), nullptr);
  EXPECT_EQ(kbxDataByDeletingFirstLine(nullptr), nullptr);
  EXPECT_EQ(kbxDataByDeletingNulls(nullptr), nullptr);
  EXPECT_EQ(kbxComponentsOfLength(nullptr, 3), nullptr);
  EXPECT_EQ(kbxSafeSubdataWithRange(nullptr, {0, 1}, nullptr), nullptr);
}

}  // namespace
}  // namespace kbx
