// Places: where in a store the files and folders stand that a command line names.
#pragma once

#include <string>
#include <vector>

#include "host/console/Command.h"

namespace kbx {

/// The places of those operands that are there: absolute paths, without links on the way. The
/// others are named on the console.
std::vector<std::string> placesOf(const std::vector<std::string>& operands, Console& console);

}  // namespace kbx
