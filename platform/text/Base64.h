// Base64: bytes as text, in the alphabet of RFC 4648 with "+", "/" and padding.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Export.h"

namespace kbx {

/// The text of the bytes, padded with "=" to a multiple of four characters, without line breaks.
KBX_PLATFORM std::string base64FromBytes(std::string_view bytes);

/// The bytes of a text; absent when it is not base64. Blanks, tabs and line ends are skipped;
/// padding is required and ends the text.
KBX_PLATFORM std::optional<std::string> bytesFromBase64(std::string_view text);

/// How many letters so many bytes have.
constexpr std::size_t base64Length(std::size_t bytes) { return (bytes + 2) / 3 * 4; }
/// Writes base64Length(bytes.size()) letters, padded as above.
KBX_PLATFORM void writeBase64(char* letters, std::string_view bytes);

}  // namespace kbx
