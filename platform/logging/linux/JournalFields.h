// The fields of one entry in the system's journal.
#pragma once

#include <array>
#include <string>

#include "platform/Export.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// "NAME=value", as the journal takes them. A value may hold line feeds.
using JournalFields = std::array<std::string, 4>;

/// An entry of the error level. Names that are absent or hold a lone surrogate come as readable as
/// they can.
KBX_PLATFORM JournalFields errorEntry(NSString* subsystem, NSString* category, const char* text);

}  // namespace kbx
