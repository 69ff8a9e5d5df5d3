#include "platform/propertylists/PropertyListText.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "platform/objects/NSDate.h"

namespace kbx {
namespace {

using std::chrono::days;
using std::chrono::year_month_day;

constexpr double kSecondsInDay = 86400;
constexpr std::chrono::sys_days kReferenceDay{std::chrono::year{2001} / 1 / 1};

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t start = text.find_first_not_of(blanks);
  if (start == text.npos) return {};
  return text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

/// Removes the prefix; whether it was there.
bool take(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

template <class T, class... Format>
std::optional<T> whole(std::string_view text, Format... format) {
  T value{};
  const char* end = text.data() + text.size();
  auto [stop, fault] = std::from_chars(text.data(), end, value, format...);
  if (fault != std::errc() || stop != end) return std::nullopt;
  return value;
}

template <class... Format>
std::string printed(auto value, Format... format) {
  char text[40];
  return {text, std::to_chars(text, text + sizeof text, value, format...).ptr};
}

/// A part of a date: digits only, exactly `width` of them or, for the year, at least.
std::optional<int> digits(std::string_view& text, std::size_t width) {
  if (text.size() < width) return std::nullopt;
  auto part = text.substr(0, width);
  if (part.find_first_not_of("0123456789") != part.npos) return std::nullopt;
  text.remove_prefix(width);
  return whole<int>(part);
}

std::optional<year_month_day> takeDay(std::string_view& text) {
  const int sign = take(text, "-") ? -1 : 1;
  auto year = digits(text, 4);
  if (!year || !take(text, "-")) return std::nullopt;
  auto month = digits(text, 2);
  if (!month || !take(text, "-")) return std::nullopt;
  auto day = digits(text, 2);
  if (!day) return std::nullopt;
  const year_month_day date{std::chrono::year{sign * *year},
                            std::chrono::month{static_cast<unsigned>(*month)},
                            std::chrono::day{static_cast<unsigned>(*day)}};
  return date.ok() ? std::optional(date) : std::nullopt;
}

std::optional<int> takeSeconds(std::string_view& text) {
  auto hour = digits(text, 2);
  if (!hour || *hour > 23 || !take(text, ":")) return std::nullopt;
  auto minute = digits(text, 2);
  if (!minute || *minute > 59 || !take(text, ":")) return std::nullopt;
  auto second = digits(text, 2);
  if (!second || *second > 60) return std::nullopt;  // 60: a leap second
  return *hour * 3600 + *minute * 60 + *second;
}

/// Adds a part of a date, with zeros in front, and what stands behind it.
void appendDigits(std::string& text, int number, std::size_t width, char behind) {
  text.append(width, '0');
  for (auto at = text.end(); number > 0; number /= 10) *--at = static_cast<char>('0' + number % 10);
  text += behind;
}

std::string lowerCased(std::string_view text) {
  std::string result(text);
  for (char& letter : result)
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter + ('a' - 'A'));
  return result;
}

std::optional<double> namedReal(std::string_view text) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const std::string name = lowerCased(text);
  if (name == "nan") return std::numeric_limits<double>::quiet_NaN();
  for (std::string_view sign : {"", "+", "-"})
    for (std::string_view word : {"infinity", "inf"})
      if (name == std::string(sign).append(word)) return sign == "-" ? -kInfinity : kInfinity;
  return std::nullopt;
}

}  // namespace

std::string textFromInteger(const NSNumber& number) {
  return number.kind() == NSNumber::Kind::Unsigned ? printed(number.unsignedIntegerValue())
                                                   : printed(number.integerValue());
}

Ref<NSNumber> integerFromText(std::string_view text) {
  text = trimmed(text);
  const bool isNegative = text.starts_with("-");
  if (!isNegative) take(text, "+");
  if (isNegative) text.remove_prefix(1);
  const int base = take(text, "0x") || take(text, "0X") ? 16 : 10;
  auto size = whole<std::uint64_t>(text, base);
  if (!size) return nullptr;
  constexpr std::uint64_t kLargest = std::numeric_limits<std::int64_t>::max();
  if (isNegative && *size > kLargest + 1) return nullptr;
  if (isNegative) return NSNumber::numberWithInteger(static_cast<std::int64_t>(0 - *size));
  return *size > kLargest ? NSNumber::numberWithUnsignedInteger(*size)
                          : NSNumber::numberWithInteger(static_cast<std::int64_t>(*size));
}

std::string textFromReal(double number) {
  if (std::isnan(number)) return "nan";
  if (std::isinf(number)) return number < 0 ? "-infinity" : "+infinity";
  if (number == 0) return std::signbit(number) ? "-0.0" : "0.0";
  // The same as "%.17g", but with a point in every locale.
  return printed(number, std::chars_format::general, 17);
}

std::optional<double> realFromText(std::string_view text) {
  text = trimmed(text);
  const bool isWord = !text.empty() && (text.back() | 0x20) >= 'a' && (text.back() | 0x20) <= 'z';
  if (isWord) return namedReal(text);
  const bool hasSign = take(text, "+");
  if (text.find_first_not_of("0123456789+-.eE") != text.npos || (hasSign && text.starts_with("-")))
    return std::nullopt;
  return whole<double>(text);
}

std::optional<std::string> textFromDate(double seconds) {
  constexpr double kTenThousandYears = 10000 * 366 * kSecondsInDay;
  if (!(std::abs(seconds) < kTenThousandYears)) return std::nullopt;
  // Whole seconds first: of a moment before midnight the rest of a day would round up to a day.
  const std::chrono::sys_seconds time =
      kReferenceDay + std::chrono::seconds(static_cast<std::int64_t>(std::floor(seconds)));
  const auto start = std::chrono::floor<days>(time);
  const int clock = static_cast<int>((time - start).count());
  const year_month_day date(start);
  const int year{date.year()};
  if (std::abs(year) > 9999) return std::nullopt;
  std::string text(year < 0 ? "-" : "");
  appendDigits(text, std::abs(year), 4, '-');
  appendDigits(text, static_cast<int>(unsigned{date.month()}), 2, '-');
  appendDigits(text, static_cast<int>(unsigned{date.day()}), 2, 'T');
  appendDigits(text, clock / 3600, 2, ':');
  appendDigits(text, clock / 60 % 60, 2, ':');
  appendDigits(text, clock % 60, 2, 'Z');
  return text;
}

std::optional<double> dateFromText(std::string_view text) {
  text = trimmed(text);
  auto day = takeDay(text);
  if (!day || !take(text, "T")) return std::nullopt;
  auto clock = takeSeconds(text);
  if (!clock || text != "Z") return std::nullopt;
  const auto count = (std::chrono::sys_days{*day} - kReferenceDay).count();
  return static_cast<double>(count) * kSecondsInDay + *clock;
}

}  // namespace kbx
