// DefaultsCommand: `ferncase defaults`, the user's preferences in their files.
#pragma once

#include <memory>

#include "host/console/Command.h"

namespace kbx {

std::unique_ptr<Command> makeDefaultsCommand();

}  // namespace kbx
