// UTF-8 and UTF-16: checking and converting, fast where the bytes are ASCII.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Export.h"

namespace kbx {

/// How many bytes at the start are ASCII: bytes.size() when all are.
KBX_PLATFORM std::size_t asciiPrefixLength(std::string_view bytes) noexcept;
/// How many units at the start are ASCII.
KBX_PLATFORM std::size_t asciiPrefixLength(std::u16string_view units) noexcept;

/// Whether the bytes are valid UTF-8, checked many at a time.
KBX_PLATFORM bool isUTF8(std::string_view bytes) noexcept;

/// The UTF-16 units of UTF-8; absent when the bytes are not valid (overlong forms, surrogates,
/// values beyond U+10FFFF and cut sequences are not).
KBX_PLATFORM std::optional<std::u16string> utf16FromUTF8(std::string_view bytes);
/// The same, where every malformed sequence becomes one U+FFFD.
KBX_PLATFORM std::u16string utf16FromLossyUTF8(std::string_view bytes);

/// The UTF-8 of UTF-16 units; absent when a surrogate has no partner.
KBX_PLATFORM std::optional<std::string> utf8FromUTF16(std::u16string_view units);
/// The same, where a lone surrogate becomes U+FFFD.
KBX_PLATFORM std::string lossyUTF8FromUTF16(std::u16string_view units);

}  // namespace kbx
