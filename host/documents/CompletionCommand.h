// CompletionCommand: `ferncase completion`.
#pragma once

#include <memory>

#include "host/console/Command.h"

namespace kbx {

std::unique_ptr<Command> makeCompletionCommand();

}  // namespace kbx
