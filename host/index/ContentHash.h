// ContentHash: by what the content of a file is known again.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/objects/NSError.h"
#include "platform/objects/SeededHash.h"

namespace kbx {

/// Of all bytes of a file, under a key that each store has for itself: nobody else can make two
/// messages that look the same.
using ContentHash = std::uint64_t;

/// Absent when the file cannot be read; then the error says why. Reads a piece at a time.
std::optional<ContentHash> contentHashOf(const std::string& path, HashKey key, Ref<NSError>* error);

/// As the store keeps them: eight bytes, the highest first.
std::string bytesOf(ContentHash hash);
/// Absent for other lengths.
std::optional<ContentHash> contentHashIn(std::string_view bytes);

}  // namespace kbx
