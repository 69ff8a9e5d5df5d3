// CommandOutline: what can be said to a command, as manual pages and completions tell it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/console/Command.h"

namespace kbx {

struct OptionOutline {
  std::vector<std::string> names;  // with their dashes, short ones first
  std::string value;               // the name of what it takes; empty for a flag
  std::string description;
  bool mayBeRepeated = false;

  /// What the value may be, where it is one of a few words.
  std::vector<std::string> valueWords() const;
  /// Whether the value is the path of a file or folder.
  bool takesPath() const;
};

struct CommandOutline {
  std::string name;
  std::string summary;
  std::string operands;
  std::string notes;
  std::vector<OptionOutline> options;

  /// The words in small letters that may stand in the place of the first operand, such as "read".
  std::vector<std::string> operandWords() const;
};

CommandOutline outlineOf(Command& command);
/// Of all commands, in the order of the general help.
std::vector<CommandOutline> allOutlines();

}  // namespace kbx
