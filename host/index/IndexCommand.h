// IndexCommand: `ferncase index`, the folders that can be searched.
#pragma once

#include <memory>

#include "host/console/Command.h"

namespace kbx {

std::unique_ptr<Command> makeIndexCommand();

}  // namespace kbx
