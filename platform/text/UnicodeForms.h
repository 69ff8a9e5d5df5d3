// Unicode forms: UTF-16 and UTF-32 as bytes, and text as ASCII with escapes.
#pragma once

#include <bit>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Export.h"

namespace kbx {

/// The units of UTF-16 bytes. A lone surrogate stays; half a unit at the end gives absent.
KBX_PLATFORM std::optional<std::u16string> decodeUTF16(std::string_view bytes, std::endian order);
KBX_PLATFORM std::string encodeUTF16(std::u16string_view units, std::endian order);

/// The units of UTF-32 bytes; absent when a value is no Unicode scalar or cut off.
KBX_PLATFORM std::optional<std::u16string> decodeUTF32(std::string_view bytes, std::endian order);
/// A lone surrogate has no such form: U+FFFD with `isLossy`, else absent.
KBX_PLATFORM std::optional<std::string> encodeUTF32(std::u16string_view units, std::endian order,
                                                    bool isLossy);

/// The order that a byte-order mark at the start tells, for units of 2 or 4 bytes.
KBX_PLATFORM std::optional<std::endian> byteOrderMark(std::string_view bytes, std::size_t unitSize);

/// ASCII with escapes: "\ooo" for units from 0x80 to 0xFF, "\uxxxx" above, "\\" for a backslash.
/// Every text has this form, lone surrogates included.
KBX_PLATFORM std::string encodeNonLossyASCII(std::u16string_view units);
/// The text of that form, hexadecimal digits of either case; absent for any other escape and for
/// bytes beyond ASCII.
KBX_PLATFORM std::optional<std::u16string> decodeNonLossyASCII(std::string_view bytes);

}  // namespace kbx
