#include "platform/text/ASCIIDisplayOrder.h"

#include <gtest/gtest.h>
#include <unicode/ucol.h>

#include <random>
#include <string>

#include "tests/support/Text.h"

namespace kbx {
namespace {

class ASCIIDisplayOrder : public testing::TestWithParam<bool> {
 protected:
  ASCIIDisplayOrder() {
    UErrorCode status = U_ZERO_ERROR;
    _collator = ucol_open("", &status);
    ucol_setStrength(_collator, UCOL_SECONDARY);
    ucol_setAttribute(_collator, UCOL_NUMERIC_COLLATION, GetParam() ? UCOL_ON : UCOL_OFF, &status);
  }
  ~ASCIIDisplayOrder() override { ucol_close(_collator); }

  void expectICUsOrder(const std::string& a, const std::string& b) {
    const std::u16string wideA(a.begin(), a.end()), wideB(b.begin(), b.end());
    ASSERT_EQ(static_cast<int>(compareASCIIForDisplay(string(a), string(b), GetParam())),
              static_cast<int>(ucol_strcoll(_collator, wideA.data(),
                                            static_cast<std::int32_t>(wideA.size()), wideB.data(),
                                            static_cast<std::int32_t>(wideB.size()))))
        << testing::PrintToString(a) << testing::PrintToString(b);
  }

 private:
  UCollator* _collator;
};

TEST_P(ASCIIDisplayOrder, AnyTwoCharactersStandAsByICU) {
  for (int a = 0; a < 128; ++a)
    for (int b = 0; b < 128; ++b)
      expectICUsOrder(std::string(1, static_cast<char>(a)), std::string(1, static_cast<char>(b)));
}

TEST_P(ASCIIDisplayOrder, AnyTwoTextsStandAsByICU) {
  const std::string alphabet = "0012389aAbBzZ -.\t\x01";
  std::mt19937 random(1);
  auto make = [&] {
    std::string text;
    for (std::size_t length = random() % 8; text.size() < length;)
      text += alphabet[random() % alphabet.size()];
    return text;
  };
  for (int round = 0; round < 20000; ++round) expectICUsOrder(make(), make());
}

INSTANTIATE_TEST_SUITE_P(DigitsAndNumbers, ASCIIDisplayOrder, testing::Bool());

}  // namespace
}  // namespace kbx
