#include "host/search/DateWords.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <vector>

#include "host/search/Spelling.h"
#include "platform/system/Clock.h"

namespace kbx {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::int64_t kMost = 100000;  // days, weeks, months or years that one may count
constexpr std::array<std::string_view, 8> kNames{"today",     "yesterday", "thisweek", "lastweek",
                                                 "thismonth", "lastmonth", "thisyear", "lastyear"};

sys_days today() {
  const CivilTime now = LocalTime::current().civilTime(Clock::current().secondsSince1970());
  return sys_days(std::chrono::year(static_cast<int>(now.year)) /
                  std::chrono::month(static_cast<unsigned>(now.month)) /
                  std::chrono::day(static_cast<unsigned>(now.day)));
}

double midnightOf(sys_days day) {
  const year_month_day date(day);
  return LocalTime::current().secondsOf({int{date.year()}, static_cast<int>(unsigned{date.month()}),
                                         static_cast<int>(unsigned{date.day()})});
}

/// The first day of a month that is counted from the year 0 on.
sys_days firstOfMonth(std::int64_t months) {
  return sys_days(std::chrono::year(static_cast<int>(months / 12)) /
                  std::chrono::month(static_cast<unsigned>(months % 12 + 1)) / 1);
}

std::int64_t monthOf(sys_days day) {
  const year_month_day date(day);
  return int{date.year()} * std::int64_t{12} + unsigned{date.month()} - 1;
}

sys_days mondayOf(sys_days day) { return day - (std::chrono::weekday(day) - std::chrono::Monday); }

std::int64_t bounded(std::int64_t count) { return std::clamp(count, -kMost, kMost); }

/// The months of a calendar that has years of four digits.
std::int64_t boundedMonth(std::int64_t months) {
  return std::clamp<std::int64_t>(months, 0, 9999 * 12 + 11);
}

DateSpan spanOf(sys_days from, sys_days to) { return {midnightOf(from), midnightOf(to)}; }

std::optional<int> numberOf(std::string_view digits) {
  int number = 0;
  const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const bool isWhole = failure == std::errc() && end == digits.data() + digits.size();
  return isWhole && !digits.empty() && digits[0] != '-' ? std::optional(number) : std::nullopt;
}

std::vector<std::string_view> piecesOf(std::string_view word, char separator) {
  std::vector<std::string_view> pieces;
  for (std::size_t end; (end = word.find(separator)) != std::string_view::npos;
       word.remove_prefix(end + 1))
    pieces.push_back(word.substr(0, end));
  pieces.push_back(word);
  return pieces;
}

std::optional<DateSpan> numericSpan(std::string_view word) {
  const auto pieces = piecesOf(word, '-');
  if (pieces.size() > 3 || pieces[0].size() != 4) return std::nullopt;
  std::array<int, 3> numbers{0, 1, 1};
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const auto number = numberOf(pieces[i]);
    if (!number || (i > 0 && pieces[i].size() != 2)) return std::nullopt;
    numbers[i] = *number;
  }
  const year_month_day date{std::chrono::year(numbers[0]),
                            std::chrono::month(static_cast<unsigned>(numbers[1])),
                            std::chrono::day(static_cast<unsigned>(numbers[2]))};
  if (!date.ok()) return std::nullopt;
  const sys_days from(date);
  if (pieces.size() == 3) return spanOf(from, from + days(1));
  return spanOf(from, firstOfMonth(monthOf(from) + (pieces.size() == 2 ? 1 : 12)));
}

std::string lowered(std::string_view word) {
  std::string text(word);
  for (char& letter : text)
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter + 32);
  return text;
}

/// "today" is {0, 1} of days: how many units from now it begins, and how many it lasts.
std::optional<DateSpan> namedSpan(std::string_view name) {
  const auto found = std::ranges::find(kNames, name);
  if (found == kNames.end()) return std::nullopt;
  const auto index = found - kNames.begin();
  const std::int64_t begin = -(index % 2);
  constexpr std::array kBeginnings{beginningOfDay, beginningOfWeek, beginningOfMonth,
                                   beginningOfYear};
  const auto beginning = kBeginnings[static_cast<std::size_t>(index / 2)];
  return DateSpan{beginning(begin), beginning(begin + 1)};
}

/// The same day of an earlier month, or its last one where it has no such day.
sys_days monthsAgo(std::int64_t months) {
  const sys_days now = today();
  const sys_days first = firstOfMonth(boundedMonth(monthOf(now) - months));
  const sys_days following = firstOfMonth(monthOf(first) + 1);
  return std::min(first + (now - firstOfMonth(monthOf(now))), following - days(1));
}

std::optional<DateSpan> spanAgo(std::string_view word) {
  if (word.size() < 2) return std::nullopt;
  const auto number = numberOf(word.substr(0, word.size() - 1));
  if (!number || *number > kMost) return std::nullopt;
  sys_days day = today();
  switch (word.back()) {
    case 'd':
      day -= days(*number);
      break;
    case 'w':
      day -= days(*number * 7);
      break;
    case 'm':
    case 'y':
      day = monthsAgo(word.back() == 'm' ? *number : *number * std::int64_t{12});
      break;
    default:
      return std::nullopt;
  }
  return spanOf(day, day + days(1));
}

std::string written(int year, int month, int day, std::size_t pieces) {
  char text[48];
  if (pieces == 2)
    std::snprintf(text, sizeof text, "%04d-%02d", year, month);
  else
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", year, month, day);
  return text;
}

/// A date with other separators, without its zeros, with its parts the other way round, or with a
/// day that the month has not.
std::string nearestNumericDate(std::string_view word) {
  std::string dashed(word);
  std::ranges::replace_if(
      dashed, [](char c) { return c == '/' || c == '.' || c == '_'; }, '-');
  auto pieces = piecesOf(dashed, '-');
  if (pieces.size() < 2 || pieces.size() > 3) return {};
  if (pieces[0].size() != 4 && pieces.back().size() == 4) std::ranges::reverse(pieces);
  std::array<int, 3> numbers{0, 1, 1};
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const auto number = numberOf(pieces[i]);
    if (!number || pieces[i].size() > (i == 0 ? 4u : 2u)) return {};
    numbers[i] = *number;
  }
  if (pieces[0].size() != 4) return {};
  const int month = std::clamp(numbers[1], 1, 12);
  const std::int64_t months = numbers[0] * std::int64_t{12} + month - 1;
  const int lastDay = static_cast<int>((firstOfMonth(months + 1) - firstOfMonth(months)).count());
  return written(numbers[0], month, std::clamp(numbers[2], 1, lastDay), pieces.size());
}

/// Takes "hh:mm" or "hh:mm:ss".
bool readClock(std::string_view text, CivilTime& time) {
  const auto pieces = piecesOf(text, ':');
  if (pieces.size() < 2 || pieces.size() > 3) return false;
  std::array<int, 3> numbers{0, 0, 0};
  constexpr std::array<int, 3> kLimits{24, 59, 60};
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const auto number = numberOf(pieces[i].substr(0, pieces[i].find('.')));
    if (!number || *number > kLimits[i]) return false;
    numbers[i] = *number;
  }
  time.hour = numbers[0];
  time.minute = numbers[1];
  time.second = numbers[2];
  return true;
}

/// Cuts "Z", "+02:00", "+0200" or " +0200" off the end; absent when there is none.
std::optional<double> cutZone(std::string_view& text) {
  if (text.ends_with('Z') || text.ends_with('z')) {
    text.remove_suffix(1);
    return 0;
  }
  const std::size_t sign = text.find_last_of("+-");
  if (sign == std::string_view::npos) return std::nullopt;
  std::string digits(text.substr(sign + 1));
  std::erase(digits, ':');
  const auto number = digits.size() == 4 ? numberOf(digits) : std::nullopt;
  if (!number) return std::nullopt;
  const int seconds = (*number / 100 * 60 + *number % 100) * 60;
  const double zone = text[sign] == '-' ? -seconds : seconds;
  text = text.substr(0, sign);
  return zone;
}

}  // namespace

double beginningOfDay(std::int64_t count) { return midnightOf(today() + days(bounded(count))); }

double beginningOfWeek(std::int64_t count) {
  return midnightOf(mondayOf(today()) + days(7 * bounded(count)));
}

double beginningOfMonth(std::int64_t count) {
  return midnightOf(firstOfMonth(boundedMonth(monthOf(today()) + bounded(count))));
}

double beginningOfYear(std::int64_t count) {
  const std::int64_t year = int{year_month_day(today()).year()} + bounded(count);
  return midnightOf(firstOfMonth(boundedMonth(year * 12)));
}

std::optional<DateSpan> dateSpanOf(std::string_view word) {
  const std::string name = lowered(word);
  if (auto span = namedSpan(name)) return span;
  if (auto span = spanAgo(name)) return span;
  return numericSpan(name);
}

std::string nearestDateWord(std::string_view word) {
  if (auto date = nearestNumericDate(word); !date.empty()) return date;
  const std::string_view name = nearestWord(word, kNames);
  return std::string(name);
}

std::optional<double> internetTime(std::string_view text) {
  const std::size_t split = text.find_first_of("Tt ");
  const auto day = numericSpan(text.substr(0, split));
  if (!day || text.substr(0, split).size() != 10) return std::nullopt;
  if (split == std::string_view::npos) return day->from;
  std::string_view clock = text.substr(split + 1);
  const auto zone = cutZone(clock);
  while (clock.ends_with(' ')) clock.remove_suffix(1);
  const auto part = [&](std::size_t place, std::size_t size) {
    return numberOf(text.substr(place, size)).value_or(0);
  };
  CivilTime time{part(0, 4), part(5, 2), part(8, 2)};
  if (!readClock(clock, time)) return std::nullopt;
  if (!zone) return LocalTime::current().secondsOf(time);
  const sys_days utc(std::chrono::year(static_cast<int>(time.year)) /
                     std::chrono::month(static_cast<unsigned>(time.month)) /
                     std::chrono::day(static_cast<unsigned>(time.day)));
  return static_cast<double>(utc.time_since_epoch().count()) * 86400 + time.hour * 3600 +
         time.minute * 60 + time.second - *zone;
}

}  // namespace kbx
