#include "platform/objects/SeededHash.h"

#include <bit>
#include <cstddef>
#include <cstring>
#include <random>

namespace kbx {
namespace {

struct SipState {
  std::uint64_t a, b, c, d;

  void round() noexcept {
    a += b, b = std::rotl(b, 13) ^ a, a = std::rotl(a, 32);
    c += d, d = std::rotl(d, 16) ^ c;
    a += d, d = std::rotl(d, 21) ^ a;
    c += b, b = std::rotl(b, 17) ^ c, c = std::rotl(c, 32);
  }
  void add(std::uint64_t word) noexcept {
    d ^= word;
    round();
    a ^= word;
  }
};

std::uint64_t wordAt(const char* from) noexcept {
  std::uint64_t word;
  std::memcpy(&word, from, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return word;
}

/// The bytes behind the last whole word, and the length above them.
std::uint64_t lastWord(std::string_view bytes) noexcept {
  const std::size_t rest = bytes.size() % sizeof(std::uint64_t);
  std::uint64_t word = std::uint64_t{bytes.size()} << 56;
  for (std::size_t i = 0; i < rest; ++i)
    word |= std::uint64_t{static_cast<unsigned char>(bytes[bytes.size() - rest + i])} << (8 * i);
  return word;
}

std::uint64_t randomWord(std::random_device& random) {
  return std::uint64_t{random()} << 32 | random();
}

const HashKey& processKey() noexcept {
  static const HashKey key = [] {
    std::random_device random;
    return HashKey{randomWord(random), randomWord(random)};
  }();
  return key;
}

}  // namespace

std::uint64_t sipHash(std::string_view bytes, HashKey key) noexcept {
  SipState state{key.first ^ 0x736F6D6570736575, key.second ^ 0x646F72616E646F6D,
                 key.first ^ 0x6C7967656E657261, key.second ^ 0x7465646279746573};
  for (std::size_t i = 0; i + sizeof(std::uint64_t) <= bytes.size(); i += sizeof(std::uint64_t))
    state.add(wordAt(bytes.data() + i));
  state.add(lastWord(bytes));
  state.c ^= 0xFF;
  for (int i = 0; i < 3; ++i) state.round();
  return state.a ^ state.b ^ state.c ^ state.d;
}

std::uint64_t seededHash(std::string_view bytes) noexcept { return sipHash(bytes, processKey()); }

std::uint64_t scatteredHash(std::uint64_t hash, HashKey key) noexcept {
  // Odd factors lose no bit. Between two of them the upper bits come down to where the next product
  // carries them up again. A product spaces values in a row evenly, with a poor factor onto a few
  // places only; two keyed ones and a last one that is known to be a good one mix them.
  hash = (hash ^ key.first) * (key.second | 1);
  hash = (hash ^ hash >> 32) * (key.first | 1);
  return (hash ^ hash >> 29) * 0x9E3779B97F4A7C15;
}

std::uint64_t scatteredHash(std::uint64_t hash) noexcept {
  return scatteredHash(hash, processKey());
}

}  // namespace kbx
