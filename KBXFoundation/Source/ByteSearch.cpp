#include "ByteSearch.h"

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kbx {
namespace {

constexpr std::size_t kNotFound = std::string_view::npos;

std::size_t findFrom(std::string_view bytes, std::string_view pattern, std::size_t start) noexcept {
  const void* found =
      ::memmem(bytes.data() + start, bytes.size() - start, pattern.data(), pattern.size());
  return found ? static_cast<std::size_t>(static_cast<const char*>(found) - bytes.data())
               : kNotFound;
}

#if defined(__SSE2__)

constexpr std::size_t kLane = sizeof(__m128i);

__m128i load(const char* bytes) noexcept {
  __m128i lane;
  std::memcpy(&lane, bytes, sizeof lane);
  return lane;
}

/// The candidates among the sixteen positions at `at`: where the first and the last byte of the
/// pattern are right.
std::uint32_t candidates(const char* at, std::size_t lastOffset, __m128i first,
                         __m128i last) noexcept {
  const __m128i both =
      _mm_and_si128(_mm_cmpeq_epi8(load(at), first), _mm_cmpeq_epi8(load(at + lastOffset), last));
  return static_cast<std::uint32_t>(_mm_movemask_epi8(both));
}

/// Sixteen positions at a time. Text seldom has the first and the last byte of a pattern at the
/// right distance; where bytes are made so that it does, the search goes on with the C library's,
/// which is linear on all input.
std::size_t findLanes(std::string_view bytes, std::string_view pattern) noexcept {
  const std::size_t lastOffset = pattern.size() - 1;
  const __m128i first = _mm_set1_epi8(pattern.front());
  const __m128i last = _mm_set1_epi8(pattern.back());
  std::size_t at = 0;
  std::size_t wasted = 0;  // bytes compared in vain, at the most
  for (; at + lastOffset + kLane <= bytes.size(); at += kLane) {
    std::uint32_t mask = candidates(bytes.data() + at, lastOffset, first, last);
    for (; mask; mask &= mask - 1) {
      const std::size_t position = at + static_cast<std::size_t>(std::countr_zero(mask));
      if (std::memcmp(bytes.data() + position, pattern.data(), pattern.size()) == 0)
        return position;
      wasted += pattern.size();
      if (wasted > 1024 + at) return findFrom(bytes, pattern, position + 1);
    }
  }
  return findFrom(bytes, pattern, at);
}

#else

std::size_t findLanes(std::string_view bytes, std::string_view pattern) noexcept {
  return findFrom(bytes, pattern, 0);
}

#endif

}  // namespace

std::size_t findBytes(std::string_view bytes, std::string_view pattern) noexcept {
  if (pattern.size() > bytes.size()) return kNotFound;
  if (pattern.empty()) return 0;
  if (pattern.size() == 1) return bytes.find(pattern.front());
  return findLanes(bytes, pattern);
}

}  // namespace kbx
