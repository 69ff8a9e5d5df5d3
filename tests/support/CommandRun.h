// CommandRun: what a command line gives, run in this process.
#pragma once

#include <string>
#include <vector>

#include "host/CommandLine.h"

namespace kbx {

struct CommandAnswer {
  ExitCode code;
  std::string output, complaints;
};

/// arguments  without the program's name
inline CommandAnswer answerTo(const std::vector<std::string>& arguments) {
  StringOutput output, complaints;
  Diagnostics diagnostics(complaints);
  Console console{output, diagnostics};
  const ExitCode code = runCommandLine(arguments, console);
  return {code, output.text(), complaints.text()};
}

}  // namespace kbx
