// Charsets: what is known of each encoding beside its number.
#pragma once

#include <span>

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

}  // namespace kbx
