// NSRange: a location and a length, in units or bytes.
#pragma once

#include <cstdint>

#include "platform/Export.h"
#include "platform/objects/Ref.h"

namespace kbx {

class NSString;

/// The location of what was not found: the largest signed 64-bit value.
inline constexpr std::uint64_t NSNotFound = 0x7FFFFFFFFFFFFFFF;

struct NSRange {
  std::uint64_t location = 0;
  std::uint64_t length = 0;

  friend bool operator==(const NSRange&, const NSRange&) = default;
};

inline constexpr NSRange kRangeNotFound{NSNotFound, 0};

constexpr NSRange NSMakeRange(std::uint64_t location, std::uint64_t length) {
  return {location, length};
}

/// What two ranges share; (0, 0) when they do not overlap. A range whose end overflows ends at
/// the largest word.
constexpr NSRange NSIntersectionRange(NSRange a, NSRange b) {
  auto end = [](NSRange range) {
    std::uint64_t sum = range.location + range.length;
    return sum < range.location ? UINT64_MAX : sum;
  };
  std::uint64_t from = a.location > b.location ? a.location : b.location;
  std::uint64_t to = end(a) < end(b) ? end(a) : end(b);
  return from < to ? NSRange{from, to - from} : NSRange{0, 0};
}

/// The text "{location, length}".
KBX_PLATFORM Ref<NSString> NSStringFromRange(NSRange range);

}  // namespace kbx
