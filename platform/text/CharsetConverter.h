// CharsetConverter: text from the bytes of a charset and back, through the conversion library.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Export.h"

namespace kbx {

/// The UTF-16 units of bytes in a charset that the conversion library knows by this name.
///
/// isLossy  a malformed sequence is U+FFFD; without it such bytes give an absent result
///
/// Absent as well when nobody knows the charset. A byte-order mark stays in the text.
KBX_PLATFORM std::optional<std::u16string> decodeCharset(std::string_view bytes,
                                                         const char* charset, bool isLossy);

/// The bytes of UTF-16 units in a charset.
///
/// isLossy  a character that the charset lacks is written as its plain ASCII letter where it has
///          one, else as "?"; without it such text gives an absent result
KBX_PLATFORM std::optional<std::string> encodeCharset(std::u16string_view units,
                                                      const char* charset, bool isLossy);

/// What stands in ASCII for a character: its letters without marks where these are ASCII, nothing
/// for a combining mark, else "?".
KBX_PLATFORM std::string asciiApproximation(char32_t character);

}  // namespace kbx
