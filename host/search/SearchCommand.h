// SearchCommand: `ferncase search`, the messages that a query finds.
#pragma once

#include <memory>

#include "host/console/Command.h"

namespace kbx {

std::unique_ptr<Command> makeSearchCommand();

}  // namespace kbx
