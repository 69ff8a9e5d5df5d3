// WatchCommand: `ferncase watch`, a store that follows its folders.
#pragma once

#include <memory>

#include "host/console/Command.h"

namespace kbx {

std::unique_ptr<Command> makeWatchCommand();

}  // namespace kbx
