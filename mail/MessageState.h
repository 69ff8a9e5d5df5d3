// MessageState: what a mail client noted about a message, and what its header says of itself.
#pragma once

#include <cstdint>
#include <optional>

#include "mail/HeaderFields.h"
#include "platform/objects/NSDictionary.h"

namespace kbx {

/// Absent where nobody knows.
struct MessageState {
  std::optional<bool> isRead, isRepliedTo, isFlagged, isLikelyJunk;
  std::optional<std::int64_t> priority;  // 1 highest, 3 normal, 5 lowest
};

/// From the flags word of an .emlx file's property list, and from the header where that is silent.
MessageState messageState(NSDictionary* properties, const HeaderFields& header);

}  // namespace kbx
