#include "host/results/DateText.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace kbx {
namespace {

/// ".25"; empty for zero.
std::string decimals(std::int64_t microseconds) {
  if (microseconds == 0) return {};
  char text[16];
  std::snprintf(text, sizeof text, ".%06d", static_cast<int>(microseconds));
  std::string result = text;
  return result.substr(0, result.find_last_not_of('0') + 1);
}

}  // namespace

std::optional<std::string> internetDate(NSDate* date) {
  using namespace std::chrono;
  constexpr double kBeyondEveryYear = 3e11;  // seconds; within what the calendar can count
  const double since1970 = date->timeIntervalSince1970();
  if (!(std::abs(since1970) < kBeyondEveryYear)) return std::nullopt;
  const sys_time<microseconds> time{microseconds(std::llround(since1970 * 1e6))};
  const auto day = floor<days>(time);
  const year_month_day calendar(day);
  if (calendar.year() < year{0} || calendar.year() > year{9999}) return std::nullopt;
  const hh_mm_ss clock(time - day);
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d", int{calendar.year()},
                unsigned{calendar.month()}, unsigned{calendar.day()},
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text + decimals(clock.subseconds().count()) + "Z";
}

}  // namespace kbx
