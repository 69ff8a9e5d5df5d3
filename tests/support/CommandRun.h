// CommandRun: what a command line gives, run in this process.
#pragma once

#include <gmock/gmock.h>

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

struct RefusedOptions {
  std::vector<std::string> options;
  std::string reason;  // a part of what is said
};

/// That each command refuses each of the options, before it looks at anything.
inline void expectRefused(const std::vector<std::string>& commands,
                          const std::vector<RefusedOptions>& cases) {
  for (const std::string& command : commands)
    for (const auto& [options, reason] : cases) {
      std::vector<std::string> arguments{command, "/gone"};
      arguments.insert(arguments.end(), options.begin(), options.end());
      const auto [code, output, complaints] = answerTo(arguments);
      EXPECT_EQ(code, kMisused) << command << " " << options.back();
      EXPECT_THAT(complaints, testing::HasSubstr(reason));
    }
}

}  // namespace kbx
