// The search for bytes in bytes, behind NSData(KBX).
#pragma once

#include <cstddef>
#include <string_view>

namespace kbx {

/// The position of the first occurrence, or std::string_view::npos. An empty pattern is at 0.
/// Linear in the length of `bytes` for every pattern. Allocates nothing.
std::size_t findBytes(std::string_view bytes, std::string_view pattern) noexcept;

}  // namespace kbx
