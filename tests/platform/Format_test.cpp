#include "platform/text/Format.h"

#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

template <class... Arguments>
std::string formatted(std::string_view format, const Arguments&... arguments) {
  return text(stringWithFormat(string(format), arguments...));
}

#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"

/// What the C library prints.
template <class... Arguments>
std::string printed(const std::string& format, Arguments... arguments) {
  std::string result(
      static_cast<std::size_t>(std::snprintf(nullptr, 0, format.c_str(), arguments...)), '\0');
  std::snprintf(result.data(), result.size() + 1, format.c_str(), arguments...);
  return result;
}

const char* const kFlags[] = {"", "-", "+", " ", "0", "#", "-+", "+0", "# ", "-0", "#0", "+-#0 "};
const char* const kSizes[] = {"", "1", "7", "20", ".", ".0", ".1", ".5", "9.4", "3.8", "12.0"};

TEST(Format, IntegersPrintAsInC) {
  const long long values[] = {0, 1, -1, 42, -12345, INT_MAX, INT_MIN, LLONG_MAX, LLONG_MIN};
  for (const char* flags : kFlags)
    for (const char* size : kSizes)
      for (char letter : std::string_view("diuoxX"))
        for (long long value : values) {
          const std::string start = std::string("%") + flags + size;
          const auto expect = [&](const char* modifier, auto narrowed) {
            const std::string format = start + modifier + letter;
            ASSERT_EQ(formatted(format, value), printed(format, narrowed))
                << format << " " << value;
          };
          expect("hh", static_cast<signed char>(value));
          expect("h", static_cast<short>(value));
          expect("", static_cast<int>(value));
          expect("l", static_cast<long>(value));
          expect("ll", value);
          expect("j", static_cast<std::intmax_t>(value));
          expect("z", static_cast<std::size_t>(value));
          expect("t", static_cast<std::ptrdiff_t>(value));
        }
}

TEST(Format, OldNamesOfLongIntegers) {
  EXPECT_EQ(formatted("%qd", LLONG_MIN), "-9223372036854775808");
  EXPECT_EQ(formatted("%D", LLONG_MIN), "-9223372036854775808");
  EXPECT_EQ(formatted("%U", ULLONG_MAX), "18446744073709551615");
  EXPECT_EQ(formatted("%O", ULLONG_MAX), "1777777777777777777777");
  EXPECT_EQ(formatted("%Ld", LLONG_MAX), "9223372036854775807");
}

TEST(Format, RealNumbersPrintAsInC) {
  const double values[] = {0,         -0.0,        1,      -1.5, 0.1,      1e-5,     123456789.125,
                           1e20,      -1e300,      5e-324, 12.5, 999999.5, 0x1.8p-3, HUGE_VAL,
                           -HUGE_VAL, std::nan("")};
  for (const char* flags : kFlags)
    for (const char* size : kSizes)
      for (char letter : std::string_view("fFeEgGaA"))
        for (double value : values) {
          const std::string format = std::string("%") + flags + size + letter;
          ASSERT_EQ(formatted(format, value), printed(format, value)) << format;
          const std::string ofLong = std::string("%") + flags + size + "l" + letter;
          ASSERT_EQ(formatted(ofLong, value), printed(ofLong, value)) << ofLong;
        }
}

TEST(Format, LongRealNumbersKeepTheirDigits) {
  const long double third = 1.0L / 3;
  EXPECT_EQ(formatted("%.20Lf", third), printed("%.20Lf", third));
  EXPECT_EQ(formatted("%La", third), printed("%La", third));
  EXPECT_EQ(formatted("%Lf", std::numeric_limits<long double>::max()),
            printed("%Lf", std::numeric_limits<long double>::max()));
  EXPECT_EQ(formatted("%f", 1.5F), "1.500000");
}

TEST(Format, TextsPrintAsInC) {
  for (const char* flags : {"", "-"})
    for (const char* size : {"", "1", "7", ".", ".0", ".2", "9.2", "2.9"}) {
      const std::string format = std::string("<%") + flags + size + "s>";
      for (const char* value : {"", "a", "abcdef"})
        EXPECT_EQ(formatted(format, value), printed(format, value)) << format;
    }
}

TEST(Format, TextsAreUTF8) {
  EXPECT_EQ(formatted("%s", "caf\u00E9"), "caf\u00E9");
  EXPECT_EQ(formatted("%s", std::string("caf\u00E9")), "caf\u00E9");
  EXPECT_EQ(formatted("%s", "a\xFFz"), "a\uFFFDz");
  EXPECT_EQ(formatted("<%5s>", "\u00E9"), "<    \u00E9>") << "the width counts units";
  EXPECT_EQ(formatted("%s", static_cast<const char*>(nullptr)), "(null)");
  const char unterminated[] = {'a', 'b'};
  EXPECT_EQ(formatted("%.2s", static_cast<const char*>(unterminated)), "ab");
}

TEST(Format, UnitsAreUTF16) {
  EXPECT_EQ(formatted("%S", u"caf\u00E9"), "caf\u00E9");
  EXPECT_EQ(formatted("<%-6.4S>", u"caf\u00E9s"), "<caf\u00E9  >");
  EXPECT_EQ(formatted("%S", static_cast<const char16_t*>(nullptr)), "(null)");
  const char16_t unterminated[] = {u'a', u'\u00E9'};
  EXPECT_EQ(formatted("%.2S", static_cast<const char16_t*>(unterminated)), "a\u00E9");
}

TEST(Format, Characters) {
  EXPECT_EQ(formatted("%c%c", 'a', 98), "ab");
  EXPECT_EQ(formatted("%c", '\xE9'), "\u00E9") << "8 bits, whatever the sign of char";
  EXPECT_EQ(formatted("%c", 0x141), "A");
  EXPECT_EQ(formatted("%C", u'\u96FB'), "\u96FB");
  EXPECT_EQ(formatted("%C", 0x10041), "A");
  EXPECT_EQ(formatted("<%3c|%-3c>", 'a', 'b'), "<  a|b  >");
  EXPECT_EQ(formatted("<%.0c>", 'a'), "<a>") << "a character has no precision";
  EXPECT_EQ(formatted("%c%c%c%c", 0, 0, 0, 0), "") << "a zero character adds nothing";
  EXPECT_EQ(formatted("<%2c>", 0), "<  >");
  EXPECT_EQ(stringWithFormat("%C%C"_ns, 0xD83D, 0xDE00)->lossyUTF8(), "\U0001F600");
}

TEST(Format, ObjectsPrintTheirDescription) {
  EXPECT_EQ(formatted("%@", "text"_ns), "text");
  EXPECT_EQ(formatted("%@, %@", NSNumber::numberWithInteger(-3), NSNull::null()), "-3, <null>");
  EXPECT_EQ(formatted("%@", NSArray::arrayWithObjects({"a"_ns})), "(\n    a\n)");
  EXPECT_EQ(formatted("%@", Ref<NSString>()), "(null)");
  EXPECT_EQ(formatted("%@", static_cast<NSArray*>(nullptr)), "(null)");
  EXPECT_EQ(formatted("%@", nullptr), "(null)");
  EXPECT_EQ(formatted("<%6@|%-6@|%.2@>", "abc"_ns, "abc"_ns, "abc"_ns), "<   abc|abc   |ab>");
  EXPECT_EQ(formatted("%@", "100%@ of %s"_ns), "100%@ of %s") << "arguments are no formats";
}

TEST(Format, ALoneSurrogatePassesThrough) {
  auto lone = NSString::stringWithUTF16(u"\xD800");
  auto made = stringWithFormat("a%@"_ns, lone);
  EXPECT_EQ(made->characterAtIndex(1), 0xD800);
}

TEST(Format, Pointers) {
  EXPECT_EQ(formatted("%p", static_cast<const void*>(nullptr)), "0x0");
  EXPECT_EQ(formatted("%p", reinterpret_cast<const void*>(0xABCDEF)), "0xabcdef");
  EXPECT_EQ(formatted("<%8p|%-8p>", reinterpret_cast<const void*>(0x12), nullptr),
            "<    0x12|0x0     >");
  EXPECT_EQ(formatted("%.1p", reinterpret_cast<const void*>(0x1234)), "0x1234");
  EXPECT_EQ(formatted("%p", 0x10), "0x10") << "an address that is kept as a number";
  auto* object = "a"_ns;
  EXPECT_EQ(formatted("%p", object), printed("%p", static_cast<void*>(object)));
  const char* characters = "a";
  EXPECT_EQ(formatted("%p", characters), printed("%p", static_cast<const void*>(characters)));
}

TEST(Format, EveryTypeOfIntegerIsAnArgument) {
  enum class Colour : std::uint8_t { Red = 200 };
  enum Plain { kOne = 1 };
  EXPECT_EQ(formatted("%d %d %d %d", true, Colour::Red, kOne, std::int8_t{-5}), "1 200 1 -5");
  EXPECT_EQ(formatted("%u", -1), "4294967295");
  EXPECT_EQ(formatted("%lu", -1), "18446744073709551615") << "a number is widened by its own sign";
  EXPECT_EQ(formatted("%d", 0xFFFFFFFFU), "-1");
}

TEST(Format, StarsTakeTheirNumbersFromTheArguments) {
  EXPECT_EQ(formatted("<%*d>", 5, 42), "<   42>");
  EXPECT_EQ(formatted("<%-*d>", 5, 42), "<42   >");
  EXPECT_EQ(formatted("<%*d>", -5, 42), "<42   >") << "a negative width is to the left";
  EXPECT_EQ(formatted("<%.*f>", 2, 1.239), "<1.24>");
  EXPECT_EQ(formatted("<%.*f>", -2, 1.5), "<1.500000>") << "a negative precision is none";
  EXPECT_EQ(formatted("<%*.*s>", 5, 2, "abcdef"), "<   ab>");
  EXPECT_EQ(formatted("<%*@>", 5, "abc"_ns), "<  abc>");
  EXPECT_EQ(formatted("<%2$*1$d>", 5, 42), "<   42>");
  EXPECT_EQ(formatted("<%3$*2$.*1$f>", 1, 6, 2.55), printed("<%*.*f>", 6, 1, 2.55));
  EXPECT_EQ(formatted("<%*d>", INT_MIN, 1).size(), 4096U + 2) << "the widest that is honoured";
}

TEST(Format, PositionsNameTheirArguments) {
  EXPECT_EQ(formatted("%2$@ %1$@ %2$@", "a"_ns, "b"_ns), "b a b");
  EXPECT_EQ(formatted("%2$@ %@ %@", "a"_ns, "b"_ns), "b a b") << "others count on their own";
  EXPECT_EQ(formatted("%1$05d|%1$x", 255), "00255|ff");
  EXPECT_EQ(formatted("<%3$@>", "a"_ns, "b"_ns), "<(null)>");
  EXPECT_EQ(formatted("<%999999999999999$@>", "a"_ns), "<(null)>");
}

TEST(Format, LiteralsAndPercents) {
  EXPECT_EQ(formatted(""), "");
  EXPECT_EQ(formatted("100%%"), "100%");
  EXPECT_EQ(formatted("%%%d%%", 1), "%1%");
  EXPECT_EQ(formatted("caf\u00E9 \U0001F600 %d", 1), "caf\u00E9 \U0001F600 1");
  EXPECT_EQ(
      stringWithFormat(NSString::stringWithUTF8(std::string_view("a\0%d", 4)), 7)->UTF8String(),
      std::string("a\0"
                  "7",
                  3));
  EXPECT_EQ(text(stringWithFormat(nullptr)), "");
}

TEST(Format, WhatIsNoConversionPrintsNothing) {
  EXPECT_EQ(formatted("a%"), "a");
  EXPECT_EQ(formatted("a%5"), "a");
  EXPECT_EQ(formatted("a%-+ #0"), "a");
  EXPECT_EQ(formatted("a%l"), "a");
  EXPECT_EQ(formatted("a%.", 1), "a");
  EXPECT_EQ(formatted("a%*", 1), "a");
  EXPECT_EQ(formatted("a%1$"), "a");
  EXPECT_EQ(formatted("a%yz %d", 3), "az 3") << "and takes no argument";
  EXPECT_EQ(formatted("%\u00E9|%\U0001F600"),
            "|" + std::string(text(NSString::stringWithUTF16(u"\xDE00"))));
  EXPECT_EQ(formatted("%n|", 1), "|") << "nothing is ever stored";
}

TEST(Format, MissingArgumentsAreZeroOrNull) {
  EXPECT_EQ(formatted("%@ %s %S %d %u %f %p <%c>"), "(null) (null) (null) 0 0 0.000000 0x0 <>");
  EXPECT_EQ(formatted("%*d|%.*f|%2$@"), "0|0|(null)");
}

TEST(Format, ArgumentsOfAnotherKindAreZeroOrNull) {
  auto* object = "object"_ns;
  const char* characters = "text";
  EXPECT_EQ(formatted("%d %f %s %S %c", object, object, object, object, object),
            "0 0.000000 (null) (null) ");
  EXPECT_EQ(formatted("%@ %d %f %S %c", characters, characters, characters, characters, characters),
            "(null) 0 0.000000 (null) ");
  EXPECT_EQ(formatted("%@ %s %f %S", 1, 1, 1, 1), "(null) (null) 0.000000 (null)");
  EXPECT_EQ(formatted("%@ %s %d %p", 1.5, 1.5, 1.5, 1.5), "(null) (null) 0 0x0");
  EXPECT_EQ(formatted("%*d|%*d", object, 1, 1e300, 2), "1|2");
  EXPECT_EQ(formatted("%@ %s", u"units", u"units"), "(null) (null)");
  const void* pointer = characters;
  EXPECT_EQ(formatted("%@ %s %S %d", pointer, pointer, pointer, pointer), "(null) (null) (null) 0");
}

TEST(Format, HugeWidthsAndPrecisionsAreCut) {
  for (const char* format : {"%99999999999999999999d", "%.99999999999999999999d", "%2147483648@",
                             "%99999999999999999999s", "%4294967297.4294967297x", "%5000c"})
    EXPECT_LE(stringWithFormat(string(format), 1)->length(), 4097U) << format;
  EXPECT_LE(formatted("%4096.4096f", std::numeric_limits<double>::max()).size(), 4096U + 400);
  EXPECT_EQ(formatted("%.99999999999999999999@", "abc"_ns), "abc");
}

TEST(Format, AFormatMayRepeatItsFlagsForEver) {
  const std::string flags(100000, '-');
  EXPECT_EQ(formatted("%" + flags + "5d|", 1), "1    |");
  EXPECT_EQ(formatted("%" + std::string(100000, '0') + "5d|", 1), "00001|");
}

TEST(Format, NoFormatAndNoArgumentIsWrong) {
  std::mt19937 random(1);
  const std::string_view letters = "%%%%%@dsScCpfgGaxXoun0123456789$*.-+ #'hlqjztL\xC3\xA9";
  for (int round = 0; round < 20000; ++round) {
    std::string format;
    for (std::size_t count = random() % 30; count; --count)
      format += letters[random() % letters.size()];
    auto made = NSString::stringWithLossyUTF8(format);
    EXPECT_LE(stringWithFormat(made)->length(), 30U * 4200);
    EXPECT_LE(stringWithFormat(made, 3, "text", "object"_ns, 1.5, u"units", nullptr)->length(),
              30U * 4200);
  }
}

TEST(Format, NumbersHaveAPointInEveryLocale) {
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8")) GTEST_SKIP() << "no locale with a comma here";
  const std::string made = formatted("%.1f", 1.5);
  const double read = "1.5e999"_ns->doubleValue();
  std::setlocale(LC_NUMERIC, before.c_str());
  EXPECT_EQ(made, "1.5");
  EXPECT_TRUE(std::isinf(read));
}

}  // namespace
}  // namespace kbx
