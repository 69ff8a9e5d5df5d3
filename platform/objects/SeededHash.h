// SeededHash: hashes of what strangers choose, which nobody outside the process can foresee.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/Export.h"

namespace kbx {

/// What a hash depends on besides the bytes.
struct HashKey {
  std::uint64_t first = 0;
  std::uint64_t second = 0;
};

/// SipHash-1-3 of the bytes. Who does not know the key cannot find bytes with the same hash more
/// easily than by chance.
KBX_PLATFORM std::uint64_t sipHash(std::string_view bytes, HashKey key) noexcept;

/// The hash of the bytes under a key that each process draws for itself: the same for the same
/// bytes while the process lives, and another one in the next.
KBX_PLATFORM std::uint64_t seededHash(std::string_view bytes) noexcept;

/// seededHash() for the standard containers.
struct SeededHash {
  std::size_t operator()(std::string_view bytes) const noexcept { return seededHash(bytes); }
};

/// A word with the bits of another one scattered over it by the key, one to one. The upper bits are
/// the better ones.
KBX_PLATFORM std::uint64_t scatteredHash(std::uint64_t hash, HashKey key) noexcept;

/// The same under the process's key. For hashes that are the values themselves, such as those of
/// numbers: a stranger could choose values that a fixed rule would put side by side.
KBX_PLATFORM std::uint64_t scatteredHash(std::uint64_t hash) noexcept;

}  // namespace kbx
