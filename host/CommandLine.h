// CommandLine: from the words of a command line to a command.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/console/Command.h"

namespace kbx {

/// One of each, in the order of the general help.
std::vector<std::unique_ptr<Command>> makeCommands();
/// Declares the options of a command, those that all have among them.
void prepareOptions(Command& command, CLI::App& options);

/// Does what the arguments (without the program's name) say. Help that was asked for goes to the
/// output, complaints go to the diagnostics.
ExitCode runCommandLine(const std::vector<std::string>& arguments, Console& console);

}  // namespace kbx
