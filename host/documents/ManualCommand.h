// ManualCommand: `ferncase manual`.
#pragma once

#include <memory>

#include "host/console/Command.h"

namespace kbx {

std::unique_ptr<Command> makeManualCommand();

}  // namespace kbx
