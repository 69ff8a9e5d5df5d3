// Command: one of the things that `ferncase` can be told to do.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/console/Diagnostics.h"
#include "host/console/Output.h"

namespace CLI {
class App;
}

namespace kbx {

/// What the process answers. docs/command-line.md explains each.
enum ExitCode : int {
  kDone = 0,
  kBroken = 1,  // the output cannot be written, or something that should never happen
  kUndone = 1,  // nothing was found, or something was that should not be
  kMisused = 2,
  kSomeFailed = 3,
  kNoneDelivered = 4,
  kStoreFailed = 5,  // the store is not there, or cannot be read or written
  kReaderGone = 141  // as if the signal of a broken pipe had ended the process
};

/// Where a command's data and its complaints go.
struct Console {
  Output& output;
  Diagnostics& diagnostics;
};

/// A command line that means nothing. The text is for people.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A further command is a class of its own and a line in CommandLine.cpp.
class Command {
 public:
  virtual ~Command() = default;

  virtual std::string_view name() const = 0;
  /// One sentence, for the list of commands.
  virtual std::string_view summary() const = 0;
  /// What stands behind the options in the usage line: "PATH...".
  virtual std::string_view operands() const = 0;
  /// What stands below the options in the help.
  virtual std::string_view notes() const { return {}; }
  /// Whether words that begin with a dash and are no options go to run(), too. Otherwise they are
  /// refused.
  virtual bool readsDashedWords() const { return false; }
  /// Whether a word is an operand although it begins with a dash, and is not looked at as options.
  virtual bool isOperand(std::string_view) const { return false; }
  /// Whether "-Key value" sets a default for this run (docs/preferences.md).
  virtual bool takesDefaults() const { return false; }
  virtual void declareOptions(CLI::App& options) = 0;
  /// operands  what is left of the command line without the options, in bytes
  ///
  /// Raises UsageError.
  virtual ExitCode run(std::vector<std::string> operands, Console& console) = 0;
};

}  // namespace kbx
