#include "platform/text/ASCIIDisplayOrder.h"

#include <algorithm>
#include <array>
#include <compare>
#include <cstdint>
#include <string_view>

namespace kbx {
namespace {

/// The place of each character in the order; 0 for one that does not count.
constexpr std::array<std::uint8_t, 128> kPlaces = [] {
  constexpr std::string_view order =
      "\t\n\v\f\r _-,;:!?.'\"()[]{}@*/\\&#%`^+<=>|~$0123456789abcdefghijklmnopqrstuvwxyz";
  std::array<std::uint8_t, 128> places{};
  for (std::size_t i = 0; i < order.size(); ++i)
    places[static_cast<std::size_t>(order[i])] = static_cast<std::uint8_t>(i + 1);
  for (std::size_t c = 'A'; c <= 'Z'; ++c) places[c] = places[c | 0x20];
  return places;
}();

std::uint8_t placeOf(char c) { return kPlaces[static_cast<std::size_t>(c)]; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Takes what does not count off the front.
void skipIgnored(std::string_view& text) {
  while (!text.empty() && placeOf(text.front()) == 0) text.remove_prefix(1);
}

/// Takes the digits off the front; answers them without leading zeros.
std::string_view takeNumber(std::string_view& text) {
  const auto end = static_cast<std::size_t>(std::ranges::find_if_not(text, isDigit) - text.begin());
  const std::string_view digits = text.substr(0, end);
  text.remove_prefix(end);
  return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

std::strong_ordering compareNumbers(std::string_view a, std::string_view b) {
  return a.size() == b.size() ? a <=> b : a.size() <=> b.size();
}

std::strong_ordering compareTexts(std::string_view a, std::string_view b, bool isNumeric) {
  for (;;) {
    skipIgnored(a), skipIgnored(b);
    if (a.empty() || b.empty()) return b.empty() <=> a.empty();
    if (isNumeric && isDigit(a.front()) && isDigit(b.front())) {
      const std::string_view number = takeNumber(a);
      if (auto order = compareNumbers(number, takeNumber(b)); order != 0) return order;
      continue;
    }
    if (auto order = placeOf(a.front()) <=> placeOf(b.front()); order != 0) return order;
    a.remove_prefix(1), b.remove_prefix(1);
  }
}

std::string_view bytesOf(const NSString* text) {
  return text->visitUnits([](auto units) -> std::string_view {
    if constexpr (sizeof(units[0]) == 1) return {units.data(), units.size()};
    return {};
  });
}

}  // namespace

NSComparisonResult compareASCIIForDisplay(const NSString* a, const NSString* b, bool isNumeric) {
  const auto order = compareTexts(bytesOf(a), bytesOf(b), isNumeric);
  return order < 0 ? NSOrderedAscending : order > 0 ? NSOrderedDescending : NSOrderedSame;
}

}  // namespace kbx
