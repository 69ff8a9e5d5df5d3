// ManualPage: manual pages in the format of man(7).
#pragma once

#include <span>
#include <string>

#include "host/documents/CommandOutline.h"

namespace kbx {

/// The page "ferncase-NAME.1" of a command.
std::string manualPage(const CommandOutline& command);
/// The page "ferncase.1".
std::string manualPage(std::span<const CommandOutline> commands);

}  // namespace kbx
