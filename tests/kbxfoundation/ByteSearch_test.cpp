#include "ByteSearch.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace kbx {
namespace {

using Find = std::size_t (*)(std::string_view, std::string_view) noexcept;

class ByteSearch : public testing::TestWithParam<Find> {};

TEST_P(ByteSearch, FindsAPatternAtEveryPlaceOfEveryLength) {
  const std::string all = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  for (std::size_t length = 1; length <= all.size(); ++length) {
    const std::string pattern = all.substr(0, length);
    for (std::size_t size = length; size < 200; ++size) {
      ASSERT_EQ(GetParam()(std::string(size, 'x'), pattern), std::string::npos);
      for (std::size_t at = 0; at + length <= size; at += at < 70 ? 1 : 7) {
        std::string text(size, 'x');
        text.replace(at, length, pattern);
        ASSERT_EQ(GetParam()(text, pattern), at) << length << ' ' << size;
      }
    }
  }
}

TEST_P(ByteSearch, FindsWhatTheLibraryFinds) {
  std::mt19937 random(7);
  for (int round = 0; round < 30000; ++round) {
    const int letters = 1 + static_cast<int>(random() % 4);
    std::string text(random() % 400, 'a'), pattern(random() % 40, 'a');
    for (char& byte : text) byte = static_cast<char>('a' + random() % letters);
    for (char& byte : pattern) byte = static_cast<char>('a' + random() % letters);
    if (random() % 2 && text.size() >= pattern.size())
      pattern = text.substr(random() % (text.size() - pattern.size() + 1), pattern.size());
    ASSERT_EQ(GetParam()(text, pattern), text.find(pattern)) << text << ' ' << pattern;
  }
}

TEST_P(ByteSearch, AnEmptyPatternIsFoundAtOnce) {
  EXPECT_EQ(GetParam()("abc", ""), 0u);
  EXPECT_EQ(GetParam()({}, {}), 0u);
}

TEST_P(ByteSearch, NothingIsFoundInNothing) {
  EXPECT_EQ(GetParam()({}, "a"), std::string::npos);
  EXPECT_EQ(GetParam()("a", "aa"), std::string::npos);
}

TEST_P(ByteSearch, BytesAboveTheAsciiOnesAreBytes) {
  EXPECT_EQ(GetParam()("\xC3\xA9\xFF\x80\xFF", "\xFF\x80"), 2u);
  EXPECT_EQ(GetParam()(std::string_view("a\0b\0", 4), std::string_view("\0", 1)), 1u);
}

/// Everything agrees but one byte of the pattern, or of the text, wherever it is.
TEST_P(ByteSearch, GoesOnRightlyWhenItLeavesTheRestToTheLibrary) {
  std::string text(18001, 'a');
  text[9000] = 'b';
  for (std::size_t length : {2, 3, 15, 16, 17, 31, 64, 300, 2000}) {
    for (std::size_t at : {std::size_t{0}, length / 2, length - 1}) {
      std::string pattern(length, 'a');
      pattern[at] = 'b';
      ASSERT_EQ(GetParam()(text, pattern), 9000 - at) << length;
      ASSERT_EQ(GetParam()(std::string_view(text).substr(0, 9000), pattern), std::string::npos);
      ASSERT_EQ(GetParam()(std::string_view(text).substr(9001), pattern), std::string::npos);
    }
  }
}

/// Byte by byte, this would take some 250,000 million comparisons: minutes.
TEST_P(ByteSearch, TakesTimeInProportionToTheText) {
  const std::string text(1 << 20, 'a');
  for (std::size_t at : {std::size_t{0}, std::size_t{1} << 18, (std::size_t{1} << 19) - 1}) {
    std::string pattern(1 << 19, 'a');
    pattern[at] = 'b';
    EXPECT_EQ(GetParam()(text, pattern), std::string::npos);
  }
}

INSTANTIATE_TEST_SUITE_P(Both, ByteSearch, testing::Values(&findBytes, &findBytesPortably),
                         [](const auto& find) { return find.index == 0 ? "Fast" : "Portable"; });

}  // namespace
}  // namespace kbx
