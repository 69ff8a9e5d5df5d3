// DateWords: the words for days, months and years that a query knows.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/search/LocalTime.h"

namespace kbx {

/// A stretch of whole days: from <= time < to, in seconds since 1970.
struct DateSpan {
  double from, to;
};

/// The span of a word: 2024, 2024-05, 2024-05-17, today, yesterday, thisweek, lastweek, thismonth,
/// lastmonth, thisyear, lastyear, or the day that lies so long ago: 3d, 2w, 1m, 1y. In either case.
///
/// Days, weeks (from Monday on) and the rest are those of LocalTime and Clock. Absent for any other
/// word and for a day that no calendar has.
std::optional<DateSpan> dateSpanOf(std::string_view word);

/// A correct word near to a wrong one; empty when there is none. 2024-5-7 means 2024-05-07, and
/// 2024-02-31 is near to the last day of that month.
std::string nearestDateWord(std::string_view word);

/// The beginning of the day that lies `days` from today, the week `weeks` from this one, and so on,
/// in seconds since 1970.
double beginningOfDay(std::int64_t days);
double beginningOfWeek(std::int64_t weeks);
double beginningOfMonth(std::int64_t months);
double beginningOfYear(std::int64_t years);

/// The time of an internet date (2024-05-17, 2024-05-17T14:30:00Z, …+02:00); without a zone it is
/// local. Absent when it is malformed.
std::optional<double> internetTime(std::string_view text);

}  // namespace kbx
