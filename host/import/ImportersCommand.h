// ImportersCommand: `ferncase importers`.
#pragma once

#include <memory>

#include "host/console/Command.h"

namespace kbx {

/// Lists the importer bundles that are installed.
std::unique_ptr<Command> makeImportersCommand();

}  // namespace kbx
