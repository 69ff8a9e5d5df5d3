#include "host/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "host/defaults/DefaultsCommand.h"
#include "host/import/AttributesCommand.h"
#include "host/import/ImportCommand.h"
#include "host/import/ImportersCommand.h"
#include "platform/preferences/NSUserDefaults.h"

namespace kbx {
namespace {

using MakeCommand = std::unique_ptr<Command> (*)();

constexpr MakeCommand kCommands[] = {
    makeImportCommand,
    makeImportersCommand,
    makeAttributesCommand,
    makeDefaultsCommand,
};

constexpr char kVersion[] = "ferncase " FERNCASE_VERSION "\n";

class HelpText final : public CLI::Formatter {
 public:
  explicit HelpText(std::string usage) : _usage(std::move(usage)) {}
  std::string make_usage(const CLI::App*, std::string) const override {
    return "Usage: " + _usage + "\n";
  }

 private:
  const std::string _usage;
};

std::string generalHelp() {
  std::string text =
      "ferncase finds the searchable attributes of e-mail messages.\n"
      "\n"
      "Usage: ferncase COMMAND [OPTIONS] ...\n"
      "       ferncase --help | --version\n"
      "\n"
      "Commands:\n";
  for (auto make : kCommands) {
    auto command = make();
    std::string name(command->name());
    name.resize(std::max<std::size_t>(name.size(), 12), ' ');
    text.append("  ").append(name).append(command->summary()).append("\n");
  }
  return text + "\n\"ferncase COMMAND --help\" tells more about a command.\n";
}

std::unique_ptr<Command> commandNamed(std::string_view name) {
  for (auto make : kCommands) {
    auto command = make();
    if (command->name() == name) return command;
  }
  return nullptr;
}

/// Options are of one small letter or have two dashes, so what begins like this is a default's key.
bool isDefaultsKey(const std::string& word) {
  return word.size() > 2 && word[0] == '-' && word[1] >= 'A' && word[1] <= 'Z';
}

/// Takes the pairs "-Key value" away and puts them into the argument domain.
void takeDefaults(std::vector<std::string>& arguments) {
  std::vector<std::string> pairs, others;
  auto word = arguments.begin();
  for (; word != arguments.end() && *word != "--"; ++word) {
    const bool isKey = isDefaultsKey(*word);
    auto& list = isKey ? pairs : others;
    list.push_back(std::move(*word));
    if (!isKey) continue;
    if (++word == arguments.end()) throw UsageError(pairs.back() + " needs a value");
    pairs.push_back(std::move(*word));
  }
  others.insert(others.end(), word, arguments.end());
  arguments = std::move(others);
  NSUserDefaults::setArguments(pairs);
}

/// What the parser could not place: the operands. The parser's own lists of operands take brackets
/// apart, which file names may well have.
std::vector<std::string> operandsOf(const CLI::App& options, bool withDashes) {
  std::vector<std::string> operands;
  bool isBehindMark = false;
  for (auto& word : options.remaining()) {
    if (!isBehindMark && word == "--")
      isBehindMark = true;
    else if (!isBehindMark && !withDashes && word.size() > 1 && word.starts_with('-'))
      throw UsageError("unknown option " + word);
    else
      operands.push_back(std::move(word));
  }
  return operands;
}

ExitCode parseAndRun(Command& command, std::vector<std::string> arguments, Console& console) {
  const std::string name = "ferncase " + std::string(command.name());
  CLI::App options{std::string(command.summary())};
  options.set_help_flag("-h,--help", "Print this help and exit");
  options.formatter(
      std::make_shared<HelpText>(name + " [OPTIONS] " + std::string(command.operands())));
  options.footer(std::string(command.notes()));
  options.allow_extras();
  command.declareOptions(options);
  if (command.takesDefaults()) takeDefaults(arguments);
  std::ranges::reverse(arguments);  // the parser takes them from the end
  try {
    options.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    console.output.write(options.help());
    return kDone;
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  return command.run(operandsOf(options, command.readsDashedWords()), console);
}

ExitCode complain(Console& console, std::string_view command, std::string_view what) {
  console.diagnostics.message(what);
  console.diagnostics.message(std::string("try \"ferncase ").append(command).append("--help\""));
  return kMisused;
}

}  // namespace

ExitCode runCommandLine(const std::vector<std::string>& arguments, Console& console) {
  if (arguments.empty()) {
    console.diagnostics.text(generalHelp());
    return kMisused;
  }
  const std::string& first = arguments.front();
  if (first == "--help" || first == "-h" || first == "--version") {
    console.output.write(first == "--version" ? kVersion : generalHelp());
    return kDone;
  }
  auto command = commandNamed(first);
  const bool isOption = first.starts_with('-');
  if (!command)
    return complain(console, "", (isOption ? "unknown option " : "unknown command ") + first);
  try {
    return parseAndRun(*command, {arguments.begin() + 1, arguments.end()}, console);
  } catch (const UsageError& error) {
    return complain(console, first + " ", error.what());
  }
}

}  // namespace kbx
