// Charsets: what is known of each encoding beside its number.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "platform/Export.h"
#include "platform/text/StringEncoding.h"

namespace kbx {

struct Charset {
  const char* name;  // in the IANA registry, or the customary one
  std::uint64_t encoding;
  bool keepsASCII;  // ASCII text is its own encoded form, and bytes below 0x80 alone are ASCII
};

/// Every encoding that has bytes for text, once each.
KBX_PLATFORM std::span<const Charset> charsets();

/// The entry of an encoding; nullptr when nobody here knows the number.
KBX_PLATFORM const Charset* charsetOf(NSStringEncoding encoding);

/// The number of a charset by one of its names in the IANA registry or a customary one, in any
/// case; 0 when nobody knows it.
KBX_PLATFORM NSStringEncoding encodingOfCharset(std::string_view charset);

}  // namespace kbx
