// Completions: what shells need to complete a command line.
#pragma once

#include <span>
#include <string>

#include "host/documents/CommandOutline.h"

namespace kbx {

/// Each a script for one shell, to be installed where the shell looks for completions or to be read
/// by a running one.
std::string bashCompletion(std::span<const CommandOutline> commands);
std::string zshCompletion(std::span<const CommandOutline> commands);
std::string fishCompletion(std::span<const CommandOutline> commands);

}  // namespace kbx
