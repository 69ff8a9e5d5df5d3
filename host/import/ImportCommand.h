// ImportCommand: `ferncase import`, the attributes of messages.
#pragma once

#include <memory>

#include "host/console/Command.h"

namespace kbx {

std::unique_ptr<Command> makeImportCommand();

}  // namespace kbx
