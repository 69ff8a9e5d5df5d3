// Base64: bytes as text.
#pragma once

#include <string_view>

#include "host/Output.h"

namespace kbx {

/// Writes the bytes in the standard alphabet, padded, on one line.
void writeBase64(Output& output, std::string_view bytes);

}  // namespace kbx
