// NSData(KBX): line breaks made line feeds, the step that every imported message takes.
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include "NSData+KBX.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kbx {
namespace {

constexpr std::size_t kLane = 16;

/// Which of the sixteen bytes are carriage returns, one bit each.
std::uint32_t carriageReturns(const std::uint8_t* bytes) noexcept {
#if defined(__SSE2__)
  __m128i lane;
  std::memcpy(&lane, bytes, sizeof lane);
  return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(lane, _mm_set1_epi8('\r'))));
#else
  std::uint32_t mask = 0;
  for (std::size_t i = 0; i < kLane; ++i) mask |= std::uint32_t{bytes[i] == '\r'} << i;
  return mask;
#endif
}

/// Where reading and writing stand.
struct Cursor {
  const std::uint8_t* from;
  const std::uint8_t* end;
  std::uint8_t* to;
};

/// Writes the line feed for a carriage return, and steps over the line feed that belongs to it. In
/// a row of returns only the last belongs to a line feed, so one pass does what two would: pairs
/// first, then the returns that are left.
void takeReturn(Cursor& cursor) noexcept {
  *cursor.to++ = '\n';
  ++cursor.from;
  if (cursor.from != cursor.end && *cursor.from == '\n') ++cursor.from;
}

/// Whole lanes. Each is copied first and looked at then; what was copied behind a carriage return
/// is written over. So `to` needs room for a lane behind the last byte.
void normalizeLanes(Cursor& cursor) noexcept {
  while (static_cast<std::size_t>(cursor.end - cursor.from) >= kLane) {
    const std::uint32_t returns = carriageReturns(cursor.from);
    std::memcpy(cursor.to, cursor.from, kLane);
    const std::size_t run = returns ? static_cast<std::size_t>(std::countr_zero(returns)) : kLane;
    cursor.from += run;
    cursor.to += run;
    if (returns) takeReturn(cursor);
  }
}

void normalizeRest(Cursor& cursor) noexcept {
  while (cursor.from != cursor.end) {
    if (*cursor.from == '\r')
      takeReturn(cursor);
    else
      *cursor.to++ = *cursor.from++;
  }
}

}  // namespace

Ref<NSData> kbxDataByNormalizingLineBreaks(NSData* data) {
  if (!data) return nullptr;
  auto* block = static_cast<std::uint8_t*>(std::malloc(data->length() + kLane));
  if (!block) throw std::bad_alloc();
  Cursor cursor{data->bytes(), data->bytes() + data->length(), block};
  normalizeLanes(cursor);
  normalizeRest(cursor);
  return NSData::dataWithBytesNoCopy(block, static_cast<std::size_t>(cursor.to - block));
}

}  // namespace kbx
