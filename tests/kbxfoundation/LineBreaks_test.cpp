#include "LineBreaks.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace kbx {
namespace {

std::string replaced(std::string text, std::string_view target, std::string_view replacement) {
  for (std::size_t at = text.find(target); at != std::string::npos;
       at = text.find(target, at + replacement.size()))
    text.replace(at, target.size(), replacement);
  return text;
}

/// The two steps as they are told: first the pairs, then the returns that are left.
std::string twoSteps(const std::string& text) {
  return replaced(replaced(text, "\r\n", "\n"), "\r", "\n");
}

class LineBreaks : public testing::TestWithParam<LineBreakLoop> {
 protected:
  void SetUp() override {
    if (!hasLineBreakLoop(GetParam())) GTEST_SKIP() << "not on this processor";
  }
  /// Checks also that nothing is written behind as many bytes as the input has.
  std::string normalized(const std::string& text) {
    constexpr std::uint8_t kGuard = 0xA5;
    const std::vector<std::uint8_t> input(text.begin(), text.end());
    std::vector<std::uint8_t> output(input.size() + 100, kGuard);
    const std::size_t length = copyWithLineFeeds(input, output.data(), GetParam());
    EXPECT_LE(length, input.size());
    for (std::size_t i = input.size(); i < output.size(); ++i) EXPECT_EQ(output[i], kGuard) << i;
    return {output.begin(), output.begin() + static_cast<std::ptrdiff_t>(length)};
  }
};

TEST_P(LineBreaks, OneReturnAtEveryPlaceOfEveryLength) {
  for (std::size_t length = 0; length <= 140; ++length) {
    for (std::size_t at = 0; at < length; ++at) {
      std::string text(length, 'x');
      text[at] = '\r';
      ASSERT_EQ(normalized(text), twoSteps(text)) << length << ' ' << at;
      if (at + 1 < length) text[at + 1] = '\n';
      ASSERT_EQ(normalized(text), twoSteps(text)) << length << ' ' << at;
    }
  }
}

TEST_P(LineBreaks, LinesOfEveryLength) {
  for (std::size_t length = 0; length <= 140; ++length) {
    std::string text;
    while (text.size() < 600) text += std::string(length, 'x') + "\r\n";
    ASSERT_EQ(normalized(text), twoSteps(text)) << length;
    ASSERT_EQ(normalized(text + "\r"), twoSteps(text + "\r")) << length;
  }
}

TEST_P(LineBreaks, AnyMixOfBreaks) {
  std::mt19937 random(3);
  for (int round = 0; round < 20000; ++round) {
    const std::string_view letters =
        round % 2 == 0 ? "\r\r\n\nab" : "\r\nabcdefghijklmnopqrstuvwxyz";
    std::string text(random() % 300, ' ');
    for (char& byte : text) byte = letters[random() % letters.size()];
    ASSERT_EQ(normalized(text), twoSteps(text));
  }
}

TEST_P(LineBreaks, NothingElseChanges) {
  std::string text;
  for (int i = 0; i < 1024; ++i)
    if (i % 256 != '\r') text += static_cast<char>(i);
  EXPECT_EQ(normalized(text), text);
  EXPECT_EQ(normalized("\r\n" + text), "\n" + text);
}

INSTANTIATE_TEST_SUITE_P(Loops, LineBreaks,
                         testing::Values(LineBreakLoop::Compressing, LineBreakLoop::Wide,
                                         LineBreakLoop::Narrow, LineBreakLoop::Bytewise));

TEST(LineBreaksChoice, EveryProcessorCanGoByteByByte) {
  EXPECT_TRUE(hasLineBreakLoop(LineBreakLoop::Bytewise));
}

}  // namespace
}  // namespace kbx
