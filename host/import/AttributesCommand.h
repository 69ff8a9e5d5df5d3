// AttributesCommand: `ferncase attributes`.
#pragma once

#include <memory>

#include "host/console/Command.h"

namespace kbx {

/// Lists the attributes that importing a message can find.
std::unique_ptr<Command> makeAttributesCommand();

}  // namespace kbx
