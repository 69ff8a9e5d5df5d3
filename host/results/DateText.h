// DateText: points in time as other programs read them.
#pragma once

#include <optional>
#include <string>

#include "platform/objects/NSDate.h"

namespace kbx {

/// The date in the form of RFC 3339: "2026-11-21T03:56:00Z", UTC, with up to six decimals of a
/// second where it has any. Absent for what the form cannot say: not a number, infinite, or
/// outside the years 0 to 9999.
std::optional<std::string> internetDate(NSDate* date);

}  // namespace kbx
