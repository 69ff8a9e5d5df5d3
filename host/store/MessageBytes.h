// MessageBytes: the row of a message as bytes, on its way between processes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/store/StoredMessage.h"

namespace kbx {

/// Adds the row behind what is in `bytes`. Both sides are the same program, so numbers are in this
/// machine's form.
void appendMessage(std::string& bytes, const StoredMessage& message);

/// Takes a row from the start of `bytes`. Absent for bytes that hold none: whoever wrote them need
/// not be trusted. What comes out takes memory in proportion to the bytes, and texts are UTF-8.
std::optional<StoredMessage> takeMessage(std::string_view& bytes);

}  // namespace kbx
