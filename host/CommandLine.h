// CommandLine: from the words of a command line to a command.
#pragma once

#include <string>
#include <vector>

#include "host/console/Command.h"

namespace kbx {

/// Does what the arguments (without the program's name) say. Help that was asked for goes to the
/// output, complaints go to the diagnostics.
ExitCode runCommandLine(const std::vector<std::string>& arguments, Console& console);

}  // namespace kbx
