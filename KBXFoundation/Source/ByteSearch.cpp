#include "ByteSearch.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kbx {
namespace {

constexpr std::size_t kNotFound = std::string_view::npos;

/// A search that looks at likely places only, and pays for whole comparisons from an allowance.
///
/// Places are cheap to reject while texts are what people write. A text made for it agrees with
/// the pattern for long stretches everywhere; then the allowance runs out, and the rest is left to
/// the library's search, which is slower on ordinary text but never compares that much.
class Search {
 public:
  Search(std::string_view text, std::string_view pattern)
      : _text(text), _pattern(pattern), _head(std::min<std::size_t>(pattern.size(), 16)) {}

  /// How many places there are at which the pattern fits into the text.
  std::size_t places() const { return _text.size() - _pattern.size() + 1; }

  bool matches(std::size_t place) {
    _spent += kCallCost;
    if (std::memcmp(_text.data() + place, _pattern.data(), _head) != 0) return false;
    const std::size_t rest = _pattern.size() - _head;
    _spent += rest;
    return std::memcmp(_text.data() + place + _head, _pattern.data() + _head, rest) == 0;
  }
  /// Whether the comparisons so far cost more than reading the text up to `place` several times.
  bool isExhausted(std::size_t place) const { return _spent > 1024 + 4 * place; }

  /// The answer, when all places before `place` are out.
  std::size_t leaveToLibrary(std::size_t place) const {
    const char* start = _text.data();
    const void* found =
        memmem(start + place, _text.size() - place, _pattern.data(), _pattern.size());
    return found ? static_cast<std::size_t>(static_cast<const char*>(found) - start) : kNotFound;
  }

  const char* text() const { return _text.data(); }
  std::string_view pattern() const { return _pattern; }

 private:
  static constexpr std::size_t kCallCost = 8;  // of a comparison that ends at once, in bytes

  std::string_view _text;
  std::string_view _pattern;
  std::size_t _head;  // how much is compared at first, which is nearly always enough
  std::size_t _spent = 0;
};

std::size_t findByte(std::string_view text, char byte) {
  const void* found = text.empty() ? nullptr : std::memchr(text.data(), byte, text.size());
  return found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data())
               : kNotFound;
}

/// Places before `from` are out already. Jumps from one occurrence of the first byte to the next.
std::size_t searchPortably(Search& search, std::size_t from) {
  const std::string_view places(search.text(), search.places());
  for (std::size_t place = from; place < places.size(); ++place) {
    const std::size_t jump = findByte(places.substr(place), search.pattern().front());
    if (jump == kNotFound) return kNotFound;
    place += jump;
    if (search.matches(place)) return place;
    if (search.isExhausted(place)) return search.leaveToLibrary(place + 1);
  }
  return kNotFound;
}

#if defined(__SSE2__)

/// Tells sixteen places at a time at which the pattern's first and last byte are right.
class Filter {
 public:
  explicit Filter(const Search& search)
      : _text(search.text()),
        _distance(search.pattern().size() - 1),
        _first(_mm_set1_epi8(search.pattern().front())),
        _last(_mm_set1_epi8(search.pattern().back())) {}

  __m128i likely(std::size_t place) const {
    return _mm_and_si128(_mm_cmpeq_epi8(load(place), _first),
                         _mm_cmpeq_epi8(load(place + _distance), _last));
  }

 private:
  __m128i load(std::size_t offset) const {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(_text + offset));
  }

  const char* _text;
  std::size_t _distance;
  __m128i _first;
  __m128i _last;
};

std::uint64_t bits(__m128i bytes) { return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes)); }

/// Looks at the places that `mask` names, counted from `start`; true when the answer is known.
bool decide(Search& search, std::size_t start, std::uint64_t mask, std::size_t& answer) {
  for (; mask != 0; mask &= mask - 1) {
    const std::size_t place = start + static_cast<std::size_t>(std::countr_zero(mask));
    if (search.matches(place)) {
      answer = place;
      return true;
    }
    if (search.isExhausted(place)) {
      answer = search.leaveToLibrary(place + 1);
      return true;
    }
  }
  return false;
}

std::size_t searchWide(Search& search) {
  const Filter filter(search);
  const std::size_t places = search.places();
  std::size_t place = 0, answer = kNotFound;
  for (; place + 64 <= places; place += 64) {
    const __m128i a = filter.likely(place), b = filter.likely(place + 16);
    const __m128i c = filter.likely(place + 32), d = filter.likely(place + 48);
    if (bits(_mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d))) == 0) continue;
    const std::uint64_t mask = bits(a) | bits(b) << 16 | bits(c) << 32 | bits(d) << 48;
    if (decide(search, place, mask, answer)) return answer;
  }
  for (; place + 16 <= places; place += 16)
    if (decide(search, place, bits(filter.likely(place)), answer)) return answer;
  return searchPortably(search, place);
}

#endif

}  // namespace

std::size_t findBytesPortably(std::string_view text, std::string_view pattern) noexcept {
  if (pattern.empty()) return 0;
  if (pattern.size() > text.size()) return kNotFound;
  Search search(text, pattern);
  return searchPortably(search, 0);
}

std::size_t findBytes(std::string_view text, std::string_view pattern) noexcept {
#if defined(__SSE2__)
  if (pattern.size() > 1 && pattern.size() <= text.size()) {
    Search search(text, pattern);
    return searchWide(search);
  }
#endif
  return findBytesPortably(text, pattern);
}

}  // namespace kbx
