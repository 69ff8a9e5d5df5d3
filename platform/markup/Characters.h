// Characters: the classes of characters that markup is made of, and fast ways to the next one.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "platform/text/ASCII.h"

namespace kbx {

/// White space of markup. A form feed has become a blank before anybody asks.
constexpr bool isMarkupSpace(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

constexpr bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }
constexpr bool isNonCharacter(char32_t c) {
  return (c >= 0xFDD0 && c <= 0xFDEF) || (c & 0xFFFE) == 0xFFFE;
}
/// One that text may hold: no surrogate, no non-character, nothing beyond the last.
constexpr bool isCharacter(char32_t c) {
  return c <= 0x10FFFF && !isSurrogate(c) && !isNonCharacter(c);
}
/// A control character that no text keeps: all but TAB, LF and CR; the form feed is a blank.
constexpr bool isDroppedControl(char32_t c) {
  return (c < 0x20 && c != '\t' && c != '\n' && c != '\r') || (c >= 0x7F && c <= 0x9F);
}
/// What may stand in an XML document.
constexpr bool isXMLCharacter(char32_t c) {
  return c < 0x20 ? c == '\t' || c == '\n' || c == '\r'
                  : c <= 0x10FFFF && !isSurrogate(c) && c != 0xFFFE && c != 0xFFFF;
}

/// The first `wanted` from `start` on; `end` when there is none.
inline const char* findByte(const char* start, const char* end, char wanted) {
  const auto* found = start == end ? nullptr
                                   : static_cast<const char*>(std::memchr(
                                         start, wanted, static_cast<std::size_t>(end - start)));
  return found ? found : end;
}

/// The first byte from `start` on that is one of `wanted`; `end` when there is none.
template <char... wanted>
const char* findAnyByte(const char* start, const char* end) {
#if defined(__SSE2__)
  for (; end - start >= 16; start += 16) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(start));
    __m128i found = _mm_setzero_si128();
    ((found = _mm_or_si128(found, _mm_cmpeq_epi8(block, _mm_set1_epi8(wanted)))), ...);
    const auto bits = static_cast<std::uint32_t>(_mm_movemask_epi8(found));
    if (bits != 0) return start + std::countr_zero(bits);
  }
#endif
  while (start != end && !((*start == wanted) || ...)) ++start;
  return start;
}

}  // namespace kbx
