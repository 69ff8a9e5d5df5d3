// ExportCommand: `ferncase export`, what a store holds, for other programs.
#pragma once

#include <memory>

#include "host/console/Command.h"

namespace kbx {

std::unique_ptr<Command> makeExportCommand();

}  // namespace kbx
