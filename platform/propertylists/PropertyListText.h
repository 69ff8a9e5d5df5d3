// PropertyListText: numbers and dates as XML property lists write them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/objects/NSNumber.h"

namespace kbx {

/// Decimal digits, of which the whole range of 64 bits, signed or not, comes out as it is.
std::string textFromInteger(const NSNumber& number);
/// A signed or unsigned 64-bit number of decimal digits, or of hexadecimal ones behind "0x";
/// absent for anything else. Blanks around it and a sign are accepted.
KBX_PLATFORM Ref<NSNumber> integerFromText(std::string_view text);

/// At most 17 significant digits, as many as needed to tell the number from every other; "nan",
/// "+infinity", "-infinity", and "0.0" for zero.
std::string textFromReal(double number);
KBX_PLATFORM std::optional<double> realFromText(std::string_view text);

/// "2001-01-01T00:00:00Z" for a number of seconds since then, parts of a second left out; absent
/// beyond the years -9999 to 9999.
std::optional<std::string> textFromDate(double seconds);
/// Absent when the text has another form or names no day of the calendar.
KBX_PLATFORM std::optional<double> dateFromText(std::string_view text);

}  // namespace kbx
