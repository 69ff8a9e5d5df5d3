#include "platform/text/UnitSearch.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <string_view>

namespace kbx {
namespace {

constexpr std::size_t kShort = 32;  // units; up to here a plain search costs no tables

std::u16string unitsOf(const NSString& string) {
  return string.visitUnits([](auto units) { return std::u16string(units.begin(), units.end()); });
}

/// For each start of the units, how long the longest shorter start is with which it also ends.
std::vector<std::size_t> bordersOf(const std::u16string& units) {
  std::vector<std::size_t> borders(units.size(), 0);
  for (std::size_t i = 1, same = 0; i < units.size(); ++i) {
    while (same && units[i] != units[same]) same = borders[same - 1];
    if (units[i] == units[same]) ++same;
    borders[i] = same;
  }
  return borders;
}

}  // namespace

UnitSearch::UnitSearch(const NSString& text, const NSString& wanted)
    : _text(text), _wanted(wanted) {
  if (text.isASCII()) return;
  _units = unitsOf(wanted);
  if (_units.size() > kShort) _borders = bordersOf(_units);
}

std::size_t UnitSearch::next(std::size_t from) const {
  if (_wanted.length() > _text.length() - from) return _text.length();
  // Text that is not kept as ASCII has a unit that ASCII text has not.
  if (_text.isASCII()) return _wanted.isASCII() ? nextInBytes(from) : _text.length();
  return nextInUnits(from);
}

std::size_t UnitSearch::nextInBytes(std::size_t from) const {
  auto bytes = [](const NSString& string) {
    return string.visitUnits([](auto units) { return std::as_bytes(units); });
  };
  const auto text = bytes(_text), wanted = bytes(_wanted);
  const void* found = memmem(text.data() + from, text.size() - from, wanted.data(), wanted.size());
  return found ? static_cast<std::size_t>(static_cast<const std::byte*>(found) - text.data())
               : text.size();
}

std::size_t UnitSearch::nextInUnits(std::size_t from) const {
  return _text.visitUnits([&](auto units) -> std::size_t {
    if constexpr (sizeof(units[0]) == 1) {
      return units.size();
    } else {
      if (!_borders.empty()) return nextByBorders(units.data(), units.size(), from);
      const std::u16string_view view(units.data(), units.size());
      return std::min(view.find(_units, from), units.size());
    }
  });
}

std::size_t UnitSearch::nextByBorders(const char16_t* text, std::size_t length,
                                      std::size_t from) const {
  std::size_t same = 0;  // how much of what is wanted ends before `i`
  for (std::size_t i = from; i < length; ++i) {
    while (same && text[i] != _units[same]) same = _borders[same - 1];
    if (text[i] == _units[same]) ++same;
    if (same == _units.size()) return i + 1 - same;
  }
  return length;
}

}  // namespace kbx
