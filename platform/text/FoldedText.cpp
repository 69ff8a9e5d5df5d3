#include "platform/text/FoldedText.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <span>
#include <stdexcept>

#include "platform/text/CaseFolding.h"
#include "platform/text/FoldingTable.h"
#include "platform/text/KeySearch.h"

namespace kbx {
namespace {

constexpr std::size_t kLongest = std::size_t{1} << 30;  // units; a key may be three times as long

template <class Unit>
Unit foldASCII(Unit unit, NSStringCompareOptions options) {
  const bool isUpper = unit >= 'A' && unit <= 'Z';
  return isUpper && (options & NSCaseInsensitiveSearch) ? static_cast<Unit>(unit | 0x20) : unit;
}

/// Where the element that begins at `from` ends.
std::size_t endOfElement(std::u16string_view units, std::size_t from,
                         NSStringCompareOptions options) {
  std::size_t end = from;
  U16_FWD_1(units, end, units.size());
  while (end < units.size()) {
    std::size_t next = end;
    UChar32 c;
    U16_NEXT(units, next, units.size(), c);
    if (!joinsBefore(static_cast<char32_t>(c), options)) break;
    end = next;
  }
  return end;
}

}  // namespace

FoldedText::FoldedText(const NSString* text, NSStringCompareOptions options, std::size_t enough) {
  text->visitUnits([&](auto units) {
    if constexpr (sizeof(units[0]) == sizeof(char16_t)) {
      foldWide({units.data(), units.size()}, options, enough);
    } else {
      const auto part = units.first(std::min(enough, units.size()));
      _ascii.resize(part.size());
      std::ranges::transform(part, _ascii.begin(),
                             [=](char unit) { return foldASCII(unit, options); });
    }
  });
}

void FoldedText::foldWide(std::u16string_view units, NSStringCompareOptions options,
                          std::size_t enough) {
  if (units.size() > kLongest) throw std::length_error("a text of this length is not folded");
  const FoldingTable& table = FoldingTable::of(options);
  _wide.reserve(std::min(enough, units.size()));
  for (std::size_t i = 0; i < units.size() && _wide.size() < enough;) {
    const FoldingTable::Entry entry = table[units[i]];
    const bool isAlone = i + 1 == units.size() || !table[units[i + 1]].mayJoin;
    if (entry.isSimple && isAlone) {
      _wide += entry.key;
      ++i;
      continue;
    }
    const std::size_t end = endOfElement(units, i, options);
    appendElement(units, i, end, options);
    i = end;
  }
}

void FoldedText::appendElement(std::u16string_view units, std::size_t from, std::size_t to,
                               NSStringCompareOptions options) {
  std::u32string characters;
  for (std::size_t i = from; i < to;) {
    UChar32 c;
    U16_NEXT(units, i, to, c);
    characters += static_cast<char32_t>(c);
  }
  const std::u16string key = foldedKey(characters, options);
  _irregular.push_back({static_cast<std::uint32_t>(_wide.size()),
                        static_cast<std::uint32_t>(key.size()), static_cast<std::uint32_t>(from),
                        static_cast<std::uint32_t>(to - from)});
  _wide += key;
}

template <class Visitor>
decltype(auto) FoldedText::visit(Visitor&& visitor) const {
  return _wide.empty() ? visitor(std::span<const char>(_ascii))
                       : visitor(std::span<const char16_t>(_wide));
}

std::optional<std::size_t> FoldedText::startInText(std::size_t key) const {
  auto after = std::ranges::upper_bound(_irregular, key, {}, &Irregular::key);
  if (after == _irregular.begin()) return key;
  const Irregular& before = *--after;
  if (key == before.key && before.keyLength > 0) return before.text;
  if (key < before.key + before.keyLength) return std::nullopt;
  return before.text + before.textLength + (key - before.key - before.keyLength);
}

std::optional<std::size_t> FoldedText::endInText(std::size_t key) const {
  auto after = std::ranges::lower_bound(_irregular, key, {}, &Irregular::key);
  if (after == _irregular.begin()) return key;
  const Irregular& before = *--after;
  if (key < before.key + before.keyLength) return std::nullopt;
  return before.text + before.textLength + (key - before.key - before.keyLength);
}

std::optional<NSRange> FoldedText::rangeInText(std::size_t key, std::size_t keyLength) const {
  const auto start = startInText(key), end = endInText(key + keyLength);
  if (!start || !end) return std::nullopt;
  return NSRange{*start, *end - *start};
}

NSRange FoldedText::find(const FoldedText& wanted) const {
  if (wanted.isEmpty() || wanted.length() > length()) return kRangeNotFound;
  return visit([&](auto units) {
    return wanted.visit([&](auto wantedUnits) {
      NSRange range = kRangeNotFound;
      KeySearch(wantedUnits).find(units, 0, [&](std::size_t place) {
        const auto whole = rangeInText(place, wantedUnits.size());
        if (whole) range = *whole;
        return whole.has_value();
      });
      return range;
    });
  });
}

NSRange FoldedText::findAtStart(const FoldedText& wanted) const {
  if (wanted.isEmpty() || wanted.length() > length()) return kRangeNotFound;
  const bool isThere = visit([&](auto units) {
    return wanted.visit([&](auto wantedUnits) {
      return std::ranges::equal(units.first(wantedUnits.size()), wantedUnits, [](auto a, auto b) {
        return static_cast<char16_t>(a) == static_cast<char16_t>(b);
      });
    });
  });
  if (!isThere) return kRangeNotFound;
  return rangeInText(0, wanted.length()).value_or(kRangeNotFound);
}

NSComparisonResult FoldedText::compare(const FoldedText& other) const {
  const auto order = visit([&](auto mine) {
    return other.visit([&](auto theirs) {
      return std::lexicographical_compare_three_way(
          mine.begin(), mine.end(), theirs.begin(), theirs.end(),
          [](auto a, auto b) { return static_cast<char16_t>(a) <=> static_cast<char16_t>(b); });
    });
  });
  return order < 0 ? NSOrderedAscending : order > 0 ? NSOrderedDescending : NSOrderedSame;
}

}  // namespace kbx
