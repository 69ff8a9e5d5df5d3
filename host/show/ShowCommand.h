// ShowCommand: `ferncase show`, what the store knows of a message.
#pragma once

#include <memory>

#include "host/console/Command.h"

namespace kbx {

std::unique_ptr<Command> makeShowCommand();

}  // namespace kbx
