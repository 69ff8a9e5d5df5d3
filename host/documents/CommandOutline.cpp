#include "host/documents/CommandOutline.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>

#include "host/CommandLine.h"
#include "host/results/KnownAttributes.h"

namespace kbx {
namespace {

OptionOutline outlineOf(const CLI::Option& option) {
  OptionOutline outline;
  for (const std::string& name : option.get_snames()) outline.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) outline.names.push_back("--" + name);
  const bool isFlag = option.get_expected_max() == 0;
  if (!isFlag) outline.value = option.get_type_name();
  outline.mayBeRepeated = option.get_items_expected_max() > 1;
  outline.description = option.get_description();
  return outline;
}

bool isSmallLetter(char c) { return c >= 'a' && c <= 'z'; }

}  // namespace

std::vector<std::string> OptionOutline::valueWords() const {
  if (value == "PLACE") return {"private", "beside"};
  if (value == "HOW") return {"process", "none"};
  if (value == "KEY") return {"date", "rank", "path"};
  if (value == "FORMAT") return {"ndjson", "bulk", "mbox"};
  std::vector<std::string> words;
  if (value == "ATTRIBUTE")
    std::ranges::transform(knownAttributes(), std::back_inserter(words),
                           [](const KnownAttribute& known) { return std::string(known.name); });
  return words;
}

bool OptionOutline::takesPath() const {
  return value == "FILE" || value == "DIR" || value == "PATH" || value == "BUNDLE";
}

std::vector<std::string> CommandOutline::operandWords() const {
  std::vector<std::string> words;
  for (auto at = operands.begin(); at != operands.end();) {
    const auto start = std::find_if(at, operands.end(), isSmallLetter);
    at = std::find_if_not(start, operands.end(), isSmallLetter);
    if (start != at) words.emplace_back(start, at);
  }
  return words;
}

CommandOutline outlineOf(Command& command) {
  CLI::App options;
  prepareOptions(command, options);
  CommandOutline outline{std::string(command.name()),
                         std::string(command.summary()),
                         std::string(command.operands()),
                         std::string(command.notes()),
                         {}};
  for (const CLI::Option* option : options.get_options())
    outline.options.push_back(outlineOf(*option));
  return outline;
}

std::vector<CommandOutline> allOutlines() {
  std::vector<CommandOutline> outlines;
  for (const auto& command : makeCommands()) outlines.push_back(outlineOf(*command));
  return outlines;
}

}  // namespace kbx
