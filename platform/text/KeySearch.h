// KeySearch: one run of code units in another, where places may be refused.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace kbx {

/// Finds the places of a run of units in others. Belongs to one call.
///
/// Units of one byte and of two may meet: they are equal when their values are. This is the search
/// of Knuth, Morris and Pratt, because no text may cost quadratic time, with a fast walk to each
/// place where the first unit is.
template <class Unit>
class KeySearch {
 public:
  /// wanted  borrowed, not empty
  explicit KeySearch(std::span<const Unit> wanted) : _wanted(wanted), _fallbacks(wanted.size()) {
    for (std::size_t i = 1, matched = 0; i < wanted.size(); ++i) {
      matched = advance(matched, wanted[i]);
      _fallbacks[i] = matched;
    }
  }

  /// The first place at or after `from` that accept(place) takes, or units.size(). Places that are
  /// not taken may overlap.
  template <class Other, class Accept>
  std::size_t find(std::span<const Other> units, std::size_t from, Accept&& accept) const {
    std::size_t matched = 0;
    for (std::size_t i = from; i < units.size(); ++i) {
      if (matched == 0) i = findFirstUnit(units, i);
      if (i == units.size()) break;
      matched = advance(matched, units[i]);
      if (matched < _wanted.size()) continue;
      if (accept(i + 1 - matched)) return i + 1 - matched;
      matched = _fallbacks[matched - 1];
    }
    return units.size();
  }

  template <class Other>
  std::size_t find(std::span<const Other> units, std::size_t from) const {
    return find(units, from, [](std::size_t) { return true; });
  }

 private:
  template <class Other>
  bool isSame(std::size_t place, Other unit) const {
    return static_cast<char16_t>(_wanted[place]) == static_cast<char16_t>(unit);
  }

  /// How many units match when `unit` follows `matched` ones.
  template <class Other>
  std::size_t advance(std::size_t matched, Other unit) const {
    while (matched > 0 && !isSame(matched, unit)) matched = _fallbacks[matched - 1];
    return isSame(matched, unit) ? matched + 1 : 0;
  }

  template <class Other>
  std::size_t findFirstUnit(std::span<const Other> units, std::size_t from) const {
    const auto first = static_cast<Other>(_wanted[0]);
    if (!isSame(0, first)) return units.size();  // a value that no unit of this width has
    const Other* const found =
        std::char_traits<Other>::find(units.data() + from, units.size() - from, first);
    return found ? static_cast<std::size_t>(found - units.data()) : units.size();
  }

  std::span<const Unit> _wanted;
  std::vector<std::size_t> _fallbacks;  // how many units still match after a mismatch
};

}  // namespace kbx
