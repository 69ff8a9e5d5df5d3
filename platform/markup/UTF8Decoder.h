// UTF8Decoder: one character at a time, and over plain ASCII by blocks.
#pragma once

#include <bit>
#include <cstdint>

#include "platform/markup/Characters.h"

namespace kbx {

struct DecodedCharacter {
  char32_t value = 0xFFFD;
  std::uint8_t length = 1;  // in bytes; of a malformed sequence, its part that could be a start
  bool isValid = false;
};

/// The character at `p`, which is before `end` and holds a byte beyond ASCII.
inline DecodedCharacter decodeUTF8(const char* p, const char* end) {
  const auto byteAt = [&](int i) { return static_cast<std::uint8_t>(p[i]); };
  const std::uint8_t lead = byteAt(0);
  if (lead < 0xC2 || lead > 0xF4) return {};
  const std::uint8_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  // The second byte's limits keep out overlong forms, surrogates and what lies beyond the last.
  const std::uint8_t lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const std::uint8_t highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  char32_t value = lead & (0x7F >> length);
  for (std::uint8_t i = 1; i < length; ++i) {
    const bool fits = p + i < end && byteAt(i) >= (i == 1 ? lowest : 0x80) &&
                      byteAt(i) <= (i == 1 ? highest : 0xBF);
    if (!fits) return {0xFFFD, i, false};
    value = (value << 6) | (byteAt(i) & 0x3F);
  }
  return {value, length, true};
}

/// How long the character at `p` is where its bytes alone tell that it may stay in markup: two or
/// three, well-formed, no control character, surrogate or non-character. 0 where one has to look.
inline std::size_t plainLength(const char* p, const char* end) {
  const auto byteAt = [&](int i) { return static_cast<std::uint8_t>(p[i]); };
  const auto isContinuation = [&](int i) { return (byteAt(i) & 0xC0) == 0x80; };
  const std::uint8_t lead = byteAt(0);
  if (lead >= 0xC3 && lead <= 0xDF) return end - p >= 2 && isContinuation(1) ? 2 : 0;
  const bool isPlainLead = (lead >= 0xE1 && lead <= 0xEC) || lead == 0xEE;
  return isPlainLead && end - p >= 3 && isContinuation(1) && isContinuation(2) ? 3 : 0;
}

/// Whether a byte is ASCII that markup keeps as it is: no control character but TAB and LF.
constexpr bool isPlainASCII(char c) { return (c >= 0x20 && c < 0x7F) || c == '\n' || c == '\t'; }

/// The first byte that is no plain ASCII; `end` when all are.
inline const char* skipPlainASCII(const char* p, const char* end) {
#if defined(__SSE2__)
  for (; end - p >= 16; p += 16) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    // Signed: what is beyond ASCII is less than a blank, too.
    const __m128i low = _mm_cmplt_epi8(block, _mm_set1_epi8(0x20));
    const __m128i kept = _mm_or_si128(_mm_cmpeq_epi8(block, _mm_set1_epi8('\n')),
                                      _mm_cmpeq_epi8(block, _mm_set1_epi8('\t')));
    const __m128i odd =
        _mm_or_si128(_mm_andnot_si128(kept, low), _mm_cmpeq_epi8(block, _mm_set1_epi8(0x7F)));
    const auto bits = static_cast<std::uint32_t>(_mm_movemask_epi8(odd));
    if (bits != 0) return p + std::countr_zero(bits);
  }
#endif
  while (p != end && isPlainASCII(*p)) ++p;
  return p;
}

}  // namespace kbx
