// PackedAttributes: the attributes of a message as the store keeps them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kbx {

/// The property list as it is stored: compressed (Zstandard) where it is large and that makes it
/// smaller, else as it is. Safe from any thread.
std::string packedAttributes(std::string_view list);

/// The property list of what is stored. Absent for compressed bytes that are damaged, or that claim
/// to hold more than 256 times their size, which nothing packed here does: so what comes out takes
/// memory in proportion to what is stored. Other bytes are answered as they are. Safe from any
/// thread.
std::optional<std::string> unpackedAttributes(std::string_view stored);

}  // namespace kbx
