// Options of comparing and searching text.
#pragma once

#include <cstdint>

namespace kbx {

/// The platform's bits; they add up to masks such as 393.
enum NSStringCompareOptions : std::uint64_t {
  NSCaseInsensitiveSearch = 1,
  NSAnchoredSearch = 8,      // at the beginning of the text only
  kCFCompareLocalized = 32,  // the order of the user's language (comparing only)
  NSNumericSearch = 64,      // digits by the number they make: "9" before "10" (comparing only)
  NSDiacriticInsensitiveSearch = 128,
  NSWidthInsensitiveSearch = 256,
};

constexpr NSStringCompareOptions operator|(NSStringCompareOptions a, NSStringCompareOptions b) {
  return static_cast<NSStringCompareOptions>(std::uint64_t{a} | std::uint64_t{b});
}

}  // namespace kbx
