#include "LineBreaks.h"

#include <bit>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace kbx {
namespace {

using Bytes = std::span<const std::uint8_t>;

/// Where copying stands: what is read, and where the next byte goes.
struct Cursor {
  std::size_t read;
  std::uint8_t* write;
};

/// Copies what is left. One pass gives the same as replacing the pairs first and the lone returns
/// then: a return is dropped if and only if a line feed follows.
Cursor copyBytes(Bytes input, Cursor cursor) {
  for (; cursor.read < input.size(); ++cursor.read) {
    const std::uint8_t byte = input[cursor.read];
    const bool startsPair =
        byte == '\r' && cursor.read + 1 < input.size() && input[cursor.read + 1] == '\n';
    *cursor.write = byte == '\r' ? '\n' : byte;
    cursor.write += startsPair ? 0 : 1;
  }
  return cursor;
}

#if defined(__x86_64__)

constexpr std::size_t kBlock = 32;

/// The two things that are done with a block, by the instructions that every x86-64 has.
struct NarrowBlock {
  static __m128i load(const std::uint8_t* bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
  }
  static __m128i isByte(const std::uint8_t* bytes, char byte) {
    return _mm_cmpeq_epi8(load(bytes), _mm_set1_epi8(byte));
  }
  static void copyHalf(const std::uint8_t* from, std::uint8_t* to) {
    const __m128i change = _mm_and_si128(isByte(from, '\r'), _mm_set1_epi8('\r' ^ '\n'));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_xor_si128(load(from), change));
  }
  static std::uint32_t pairsOfHalf(const std::uint8_t* half) {
    const __m128i pairs = _mm_and_si128(isByte(half, '\r'), isByte(half + 1, '\n'));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(pairs));
  }

  /// Copies a block, each return as a line feed.
  static void copy(const std::uint8_t* from, std::uint8_t* to) {
    copyHalf(from, to);
    copyHalf(from + kBlock / 2, to + kBlock / 2);
  }
  /// A bit for each return that has a line feed behind it.
  static std::uint32_t pairs(const std::uint8_t* block) {
    return pairsOfHalf(block) | pairsOfHalf(block + kBlock / 2) << kBlock / 2;
  }
};

#define KBX_AVX2 __attribute__((target("avx2")))

/// The same for processors with registers of that size.
struct WideBlock {
  KBX_AVX2 static __m256i load(const std::uint8_t* bytes) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
  }
  KBX_AVX2 static __m256i isByte(const std::uint8_t* bytes, char byte) {
    return _mm256_cmpeq_epi8(load(bytes), _mm256_set1_epi8(byte));
  }

  KBX_AVX2 static void copy(const std::uint8_t* from, std::uint8_t* to) {
    const __m256i change = _mm256_and_si256(isByte(from, '\r'), _mm256_set1_epi8('\r' ^ '\n'));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm256_xor_si256(load(from), change));
  }
  KBX_AVX2 static std::uint32_t pairs(const std::uint8_t* block) {
    const __m256i pairs = _mm256_and_si256(isByte(block, '\r'), isByte(block + 1, '\n'));
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(pairs));
  }
};

/// Copies blocks while what they look at is inside the input: up to two blocks and a byte.
///
/// A block is written whole; then, for each pair, what stands behind its return is written once
/// more, one place further left. Most blocks have one pair or none, and no branch tells these two
/// apart, for nobody could predict where lines end: without a pair the block is written twice.
/// Whatever is written too far is overwritten by what comes next.
template <class Block>
[[gnu::always_inline]] inline Cursor copyBlocks(Bytes input, Cursor cursor) {
  for (; cursor.read + 2 * kBlock + 1 <= input.size(); cursor.read += kBlock) {
    const std::uint8_t* block = input.data() + cursor.read;
    std::uint64_t pairs = Block::pairs(block);
    const std::size_t dropped = pairs != 0 ? 1 : 0;
    const std::size_t rest = pairs != 0 ? static_cast<std::size_t>(std::countr_zero(pairs)) + 1 : 0;
    Block::copy(block, cursor.write);
    Block::copy(block + rest, cursor.write + rest - dropped);
    cursor.write += kBlock - dropped;
    for (pairs &= pairs - 1; pairs != 0; pairs &= pairs - 1) {
      const auto next = static_cast<std::size_t>(std::countr_zero(pairs));
      cursor.write -= 1;
      Block::copy(block + next + 1, cursor.write - (kBlock - 1 - next));
    }
  }
  return cursor;
}

// The attribute lets the compiler put the block's instructions into the loop.
KBX_AVX2 Cursor copyWideBlocks(Bytes input, Cursor cursor) {
  return copyBlocks<WideBlock>(input, cursor);
}
Cursor copyNarrowBlocks(Bytes input, Cursor cursor) {
  return copyBlocks<NarrowBlock>(input, cursor);
}

#define KBX_COMPRESSING __attribute__((target("avx512bw,avx512vbmi2,popcnt")))

/// For processors that leave bytes out of 64 by one instruction, and read and write any part of 64.
struct CompressedBlock {
  __m512i bytes;
  std::size_t length;

  /// isInput  a bit for each byte that the block has
  /// pairs    a bit for each return that has a line feed behind it
  KBX_COMPRESSING CompressedBlock(__m512i read, __mmask64 isInput, __mmask64 returns,
                                  __mmask64 pairs) {
    const __m512i feeds = _mm512_mask_mov_epi8(read, returns, _mm512_set1_epi8('\n'));
    const __mmask64 kept = _kandn_mask64(pairs, isInput);
    bytes = _mm512_maskz_compress_epi8(kept, feeds);
    length = static_cast<std::size_t>(std::popcount(static_cast<std::uint64_t>(kept)));
  }
};

KBX_COMPRESSING CompressedBlock wholeBlock(const std::uint8_t* block) {
  const __m512i read = _mm512_loadu_si512(block), next = _mm512_loadu_si512(block + 1);
  const __mmask64 returns = _mm512_cmpeq_epi8_mask(read, _mm512_set1_epi8('\r'));
  // The masks stay in their registers: one port moves them to the others, and it is the busiest.
  const __mmask64 pairs = _mm512_mask_cmpeq_epi8_mask(returns, next, _mm512_set1_epi8('\n'));
  return {read, ~__mmask64{0}, returns, pairs};
}

/// The last block, with no byte behind it.
KBX_COMPRESSING CompressedBlock lastBlock(const std::uint8_t* block, std::size_t size) {
  const __mmask64 isInput = ~__mmask64{0} >> (64 - size);
  const __m512i read = _mm512_maskz_loadu_epi8(isInput, block);
  const __mmask64 returns = _mm512_cmpeq_epi8_mask(read, _mm512_set1_epi8('\r'));
  const __mmask64 feeds = _mm512_cmpeq_epi8_mask(read, _mm512_set1_epi8('\n'));
  return {read, isInput, returns, returns & feeds >> 1};
}

/// What is written too far is overwritten by what comes next; it never gets behind the bytes read.
KBX_COMPRESSING Cursor copyCompressing(Bytes input, Cursor cursor) {
  constexpr std::size_t kWhole = 64;
  for (; cursor.read + kWhole < input.size(); cursor.read += kWhole) {
    const CompressedBlock block = wholeBlock(input.data() + cursor.read);
    _mm512_storeu_si512(cursor.write, block.bytes);
    cursor.write += block.length;
  }
  if (cursor.read == input.size()) return cursor;
  const CompressedBlock block = lastBlock(input.data() + cursor.read, input.size() - cursor.read);
  _mm512_mask_storeu_epi8(cursor.write, ~__mmask64{0} >> (kWhole - block.length), block.bytes);
  return {input.size(), cursor.write + block.length};
}

bool hasCompressing() {
  return __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vbmi2");
}
bool hasWideBlocks() { return __builtin_cpu_supports("avx2"); }
constexpr bool kHasNarrowBlocks = true;

#else

bool hasCompressing() { return false; }
bool hasWideBlocks() { return false; }
constexpr bool kHasNarrowBlocks = false;
Cursor copyCompressing(Bytes, Cursor cursor) { return cursor; }
Cursor copyWideBlocks(Bytes, Cursor cursor) { return cursor; }
Cursor copyNarrowBlocks(Bytes, Cursor cursor) { return cursor; }

#endif

LineBreakLoop fastestLoop() {
  if (hasCompressing()) return LineBreakLoop::Compressing;
  if (hasWideBlocks()) return LineBreakLoop::Wide;
  return kHasNarrowBlocks ? LineBreakLoop::Narrow : LineBreakLoop::Bytewise;
}

}  // namespace

bool hasLineBreakLoop(LineBreakLoop loop) {
  switch (loop) {
    case LineBreakLoop::Compressing:
      return hasCompressing();
    case LineBreakLoop::Wide:
      return hasWideBlocks();
    case LineBreakLoop::Narrow:
      return kHasNarrowBlocks;
    default:
      return true;
  }
}

std::size_t copyWithLineFeeds(Bytes input, std::uint8_t* output, LineBreakLoop loop) {
  Cursor cursor{0, output};
  if (loop == LineBreakLoop::Compressing) cursor = copyCompressing(input, cursor);
  if (loop == LineBreakLoop::Wide) cursor = copyWideBlocks(input, cursor);
  if (loop == LineBreakLoop::Narrow) cursor = copyNarrowBlocks(input, cursor);
  cursor = copyBytes(input, cursor);
  return static_cast<std::size_t>(cursor.write - output);
}

std::size_t copyWithLineFeeds(Bytes input, std::uint8_t* output) {
  static const LineBreakLoop loop = fastestLoop();
  return copyWithLineFeeds(input, output, loop);
}

}  // namespace kbx
