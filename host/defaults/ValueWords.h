// ValueWords: numbers, booleans and dates as words of one line.
#pragma once

#include <string>
#include <string_view>

#include "platform/objects/NSDate.h"
#include "platform/objects/NSNumber.h"

namespace kbx {

/// "true" and "false"; the digits of an integer; a real number in the shortest form that reads back
/// the same and is no integer's: "1.0", "1e+22", "inf", "-inf", "nan".
std::string wordOfNumber(NSNumber* number);
/// "2026-11-21T03:56:00Z" where that is the date to the last bit, else "@" and the seconds since
/// 2001-01-01 00:00:00 UTC.
std::string wordOfDate(NSDate* date);

/// The number, boolean or date that would be written as this very word; absent for any other word.
/// So "1.10", "007" and "+1" are texts, and nothing is lost by taking the rest for what they look
/// like.
Ref<NSObject> valueOfWord(std::string_view word);

/// A date in one of the forms above, with decimals or without, or as "2026-11-21 03:56:00 +0100".
/// Absent for any other text.
Ref<NSDate> dateOfText(std::string_view text);

}  // namespace kbx
