// HiddenOperands: operands that look like options, kept from the parser of options.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kbx {

class Command;

/// Puts signs of its own in the place of the words that the command takes for operands, and gives
/// the words back when the options are parsed.
class HiddenOperands {
 public:
  /// Values of options and what stands behind "--" stay as they are.
  HiddenOperands(const Command& command, const CLI::App& options,
                 std::vector<std::string>& arguments);
  void restore(std::vector<std::string>& operands) const;

 private:
  std::vector<std::string> _words;
};

}  // namespace kbx
