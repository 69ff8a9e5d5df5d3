#include "platform/objects/NSNumber.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "platform/objects/NSClass.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t kMostUnsigned = std::numeric_limits<std::uint64_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

Ref<NSNumber> integer(std::int64_t value) { return NSNumber::numberWithInteger(value); }
Ref<NSNumber> natural(std::uint64_t value) { return NSNumber::numberWithUnsignedInteger(value); }
Ref<NSNumber> real(double value) { return NSNumber::numberWithDouble(value); }
Ref<NSNumber> boolean(bool value) { return NSNumber::numberWithBool(value); }

TEST(NSNumber, TheTwoBooleansAreOneObjectEach) {
  EXPECT_TRUE(isSame(boolean(true), boolean(true)));
  EXPECT_TRUE(isSame(boolean(false), boolean(false)));
  EXPECT_FALSE(isSame(boolean(true), boolean(false)));
  EXPECT_TRUE(boolean(false)->isBoolean());
  EXPECT_FALSE(integer(1)->isBoolean());
}

TEST(NSNumber, ValuesAreReadAsEveryKind) {
  struct Case {
    Ref<NSNumber> number;
    NSNumber::Kind kind;
    bool truth;
    std::int64_t integer;
    std::uint64_t natural;
    double real;
    const char* text;
  };
  using enum NSNumber::Kind;
  const Case cases[] = {
      {boolean(true), Boolean, true, 1, 1, 1, "1"},
      {boolean(false), Boolean, false, 0, 0, 0, "0"},
      {integer(0), Signed, false, 0, 0, 0, "0"},
      {integer(-1), Signed, true, -1, kMostUnsigned, -1, "-1"},
      {integer(kLeast), Signed, true, kLeast, std::uint64_t{1} << 63, -0x1p63,
       "-9223372036854775808"},
      {integer(kMost), Signed, true, kMost, std::uint64_t{kMost}, 0x1p63, "9223372036854775807"},
      {natural(kMostUnsigned), Unsigned, true, -1, kMostUnsigned, 0x1p64, "18446744073709551615"},
      {natural(7), Unsigned, true, 7, 7, 7, "7"},
      {real(0), Real, false, 0, 0, 0, "0"},
      {real(-0.0), Real, false, 0, 0, -0.0, "-0"},
      {real(1.75), Real, true, 1, 1, 1.75, "1.75"},
      {real(-1.75), Real, true, -1, 0, -1.75, "-1.75"},
      {real(0.1), Real, true, 0, 0, 0.1, "0.1"},
      {real(100000), Real, true, 100000, 100000, 100000, "100000"},
      {real(1e300), Real, true, kMost, kMostUnsigned, 1e300, "1e+300"},
      {real(-1e300), Real, true, kLeast, 0, -1e300, "-1e+300"},
      {real(0x1p63), Real, true, kMost, std::uint64_t{1} << 63, 0x1p63, "9223372036854775808"},
      {real(-0x1p63), Real, true, kLeast, 0, -0x1p63, "-9223372036854775808"},
      {real(0x1p64), Real, true, kMost, kMostUnsigned, 0x1p64, "18446744073709551616"},
      {real(kInfinity), Real, true, kMost, kMostUnsigned, kInfinity, "inf"},
      {real(-kInfinity), Real, true, kLeast, 0, -kInfinity, "-inf"},
      {real(5e-324), Real, true, 0, 0, 5e-324, "5e-324"},
      {real(-1.7976931348623157e308), Real, true, kLeast, 0, -1.7976931348623157e308,
       "-1.7976931348623157e+308"},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.text);
    EXPECT_EQ(one.number->kind(), one.kind);
    EXPECT_EQ(one.number->boolValue(), one.truth);
    EXPECT_EQ(one.number->integerValue(), one.integer);
    EXPECT_EQ(one.number->unsignedIntegerValue(), one.natural);
    EXPECT_EQ(one.number->doubleValue(), one.real);
    EXPECT_EQ(text(one.number), one.text);
  }
}

TEST(NSNumber, WhatIsNotANumberIsZeroAsAnInteger) {
  EXPECT_EQ(real(kNotANumber)->integerValue(), 0);
  EXPECT_EQ(real(kNotANumber)->unsignedIntegerValue(), 0U);
  EXPECT_TRUE(std::isnan(real(kNotANumber)->doubleValue()));
  EXPECT_EQ(text(real(kNotANumber)), "nan");
}

TEST(NSNumber, EqualityIsThatOfTheValuesAndHashAgrees) {
  // Each line is one value; different lines are different values.
  const std::vector<std::vector<Ref<NSNumber>>> values = {
      {boolean(false), integer(0), natural(0), real(0), real(-0.0)},
      {boolean(true), integer(1), natural(1), real(1)},
      {integer(-1), real(-1)},
      {natural(kMostUnsigned)},
      {real(0x1p64)},
      {integer(kMost), natural(std::uint64_t{kMost})},
      {natural(std::uint64_t{1} << 63), real(0x1p63)},
      {integer(kLeast), real(-0x1p63)},
      {integer((std::int64_t{1} << 53) + 1)},
      {integer(std::int64_t{1} << 53), real(0x1p53)},
      {real(0.5)},
      {real(kInfinity)},
      {real(-kInfinity)},
      {real(1e300)},
  };
  for (std::size_t i = 0; i < values.size(); ++i)
    for (const auto& a : values[i])
      for (std::size_t j = 0; j < values.size(); ++j)
        for (const auto& b : values[j]) {
          ASSERT_EQ(isEqual(a, b), i == j) << text(a) << " and " << text(b);
          if (i == j) {
            ASSERT_EQ(a->hash(), b->hash()) << text(a) << " and " << text(b);
          }
        }
}

TEST(NSNumber, WhatIsNotANumberEqualsItselfOnly) {
  auto number = real(kNotANumber);
  EXPECT_TRUE(isEqual(number, number));
  EXPECT_FALSE(isEqual(number, real(kNotANumber)));
  EXPECT_FALSE(isEqual(number, integer(0)));
}

TEST(NSNumber, ANumberEqualsNumbersOnly) {
  EXPECT_FALSE(isEqual(integer(1), "1"_ns));
  EXPECT_FALSE(integer(1)->isEqual(nullptr));
}

TEST(NSNumber, NumbersAndTextsAnswerPlainValuesDynamically) {
  const Ref<NSObject> values[] = {integer(1), "1"_ns};
  for (const auto& value : values)
    for (const char* selector : {"boolValue", "integerValue", "doubleValue"})
      EXPECT_TRUE(value->respondsToSelector(SEL(selector))) << selector;
}

}  // namespace
}  // namespace kbx
