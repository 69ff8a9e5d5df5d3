// Dates: points in time as header fields write them.
#pragma once

#include <optional>
#include <string_view>

namespace kbx {

/// Seconds since 1970, UTC, of a raw Date value; absent when it holds no date.
std::optional<double> dateOf(std::string_view raw);

/// The same of a Received value, whose date stands behind its last semicolon.
std::optional<double> receivedDateOf(std::string_view raw);

}  // namespace kbx
