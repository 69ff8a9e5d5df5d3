#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/objects/NSException.h"
#include "platform/objects/NSString.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

struct Line {
  std::size_t start, contentsEnd, end;
  friend bool operator==(const Line&, const Line&) = default;
};

Line lineAround(NSString* text, NSRange range) {
  Line line{99, 99, 99};
  text->getLineStart(&line.start, &line.end, &line.contentsEnd, range);
  return line;
}

/// Both storages: the text as it is, and with a letter behind it that is not ASCII.
std::vector<Ref<NSString>> forms(const std::string& text) {
  return {string(text), string(text + "\né")};
}

TEST(NSStringLines, ALineIsAroundEachOfItsPlaces) {
  for (const Ref<NSString>& text : forms("ab\ncd\r\nef")) {
    for (std::size_t place : {0u, 1u, 2u}) EXPECT_EQ(lineAround(text, {place, 0}), (Line{0, 2, 3}));
    for (std::size_t place : {3u, 4u, 5u}) EXPECT_EQ(lineAround(text, {place, 0}), (Line{3, 5, 7}));
    EXPECT_EQ(lineAround(text, {7, 0}).start, 7u);
    EXPECT_EQ(lineAround(text, {8, 0}).contentsEnd, 9u);
  }
}

TEST(NSStringLines, BetweenCarriageReturnAndLineFeedIsTheLineBefore) {
  for (const Ref<NSString>& text : forms("ab\r\ncd"))
    EXPECT_EQ(lineAround(text, {3, 0}), (Line{0, 2, 4}));
}

TEST(NSStringLines, TheLastLineEndsWithTheText) {
  EXPECT_EQ(lineAround("ab\ncd"_ns, {5, 0}), (Line{3, 5, 5}));
  EXPECT_EQ(lineAround("ab\n"_ns, {3, 0}), (Line{3, 3, 3})) << "an empty one behind a terminator";
  EXPECT_EQ(lineAround(""_ns, {0, 0}), (Line{0, 0, 0}));
}

TEST(NSStringLines, SixThingsEndALine) {
  struct Case {
    const char* rule;
    std::u16string terminator;
    bool ends;
  };
  for (const auto& [rule, terminator, ends] : {Case{"line feed", u"\n", true},
                                               {"carriage return", u"\r", true},
                                               {"both", u"\r\n", true},
                                               {"next line", u"\u0085", true},
                                               {"line separator", u"\u2028", true},
                                               {"paragraph separator", u"\u2029", true},
                                               {"not a vertical tab", u"\v", false},
                                               {"nor a form feed", u"\f", false},
                                               {"nor a separator of records", u"\x1E", false}}) {
    SCOPED_TRACE(rule);
    for (const std::u16string behind : {u"b", u"é"}) {
      auto text = NSString::stringWithUTF16(u"a" + terminator + behind);
      const std::size_t end = 1 + terminator.size();
      EXPECT_EQ(lineAround(text, {0, 0}),
                ends ? (Line{0, 1, end}) : (Line{0, text->length(), text->length()}));
    }
  }
}

TEST(NSStringLines, ALineFeedBeforeACarriageReturnIsALineOfItsOwn) {
  EXPECT_EQ(lineAround("a\n\rb"_ns, {0, 0}), (Line{0, 1, 2}));
  EXPECT_EQ(lineAround("a\n\rb"_ns, {2, 0}), (Line{2, 2, 3}));
}

TEST(NSStringLines, ARangeGivesTheLinesThatItTouches) {
  EXPECT_EQ(lineAround("ab\ncd\nef"_ns, {1, 3}), (Line{0, 5, 6}));
  EXPECT_EQ(lineAround("ab\ncd\nef"_ns, {1, 2}), (Line{0, 2, 3})) << "up to the terminator";
  EXPECT_EQ(lineAround("ab\ncd\nef"_ns, {0, 8}), (Line{0, 8, 8}));
}

TEST(NSStringLines, OnlyWhatIsWantedIsStored) {
  std::size_t end = 0;
  "ab\ncd"_ns->getLineStart(nullptr, &end, nullptr, {0, 0});
  EXPECT_EQ(end, 3u);
}

TEST(NSStringLines, ARangePastTheEndRaises) {
  EXPECT_THROW(lineAround("ab"_ns, {3, 0}), Raised);
  EXPECT_THROW(lineAround("ab"_ns, {1, 2}), Raised);
  EXPECT_THROW(lineAround("ab"_ns, {1, UINT64_MAX}), Raised);
}

}  // namespace
}  // namespace kbx
