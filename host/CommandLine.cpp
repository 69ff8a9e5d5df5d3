#include "host/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "host/console/HiddenOperands.h"
#include "host/defaults/DefaultsCommand.h"
#include "host/doctor/DoctorCommand.h"
#include "host/documents/CompletionCommand.h"
#include "host/documents/ManualCommand.h"
#include "host/export/ExportCommand.h"
#include "host/import/AttributesCommand.h"
#include "host/import/ImportCommand.h"
#include "host/import/ImportersCommand.h"
#include "host/index/IndexCommand.h"
#include "host/search/SearchCommand.h"
#include "host/show/ShowCommand.h"
#include "host/watch/WatchCommand.h"
#include "platform/preferences/NSUserDefaults.h"

namespace kbx {
namespace {

using MakeCommand = std::unique_ptr<Command> (*)();

constexpr MakeCommand kCommands[] = {
    makeImportCommand,   makeIndexCommand,  makeSearchCommand,     makeWatchCommand,
    makeShowCommand,     makeExportCommand, makeImportersCommand,  makeAttributesCommand,
    makeDefaultsCommand, makeDoctorCommand, makeCompletionCommand, makeManualCommand,
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
      "ferncase indexes e-mail messages, searches them, and shows what they are known by.\n"
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

/// The word "--name=value" in two parts; the second is absent for any other word.
std::pair<std::string, std::optional<std::string>> splitAtEquals(const std::string& word) {
  const std::size_t equals = word.starts_with("--") ? word.find('=') : word.npos;
  if (equals == word.npos) return {word, std::nullopt};
  return {word.substr(0, equals), word.substr(equals + 1)};
}

/// Says of each "--name=value" what the parser means by it alone: an empty value would be taken
/// from the word behind, and a flag would be switched by it.
std::vector<std::string> withoutEmptyValues(const CLI::App& options,
                                            std::vector<std::string> arguments) {
  std::vector<std::string> words;
  auto word = arguments.begin();
  for (; word != arguments.end() && *word != "--"; ++word) {
    auto [name, value] = splitAtEquals(*word);
    const auto* option = value ? options.get_option_no_throw(name) : nullptr;
    if (option && option->get_expected_max() == 0) throw UsageError(name + " takes no value");
    const bool isEmpty = option && value->empty();
    words.push_back(isEmpty ? std::move(name) : std::move(*word));
    if (isEmpty) words.emplace_back();
  }
  words.insert(words.end(), word, arguments.end());
  return words;
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
  options.formatter(
      std::make_shared<HelpText>(name + " [OPTIONS] " + std::string(command.operands())));
  options.footer(std::string(command.notes()));
  options.allow_extras();
  prepareOptions(command, options);
  if (command.takesDefaults()) takeDefaults(arguments);
  arguments = withoutEmptyValues(options, std::move(arguments));
  const HiddenOperands hidden(command, options, arguments);
  std::ranges::reverse(arguments);  // the parser takes them from the end
  try {
    options.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    console.output.write(options.help());
    return kDone;
  } catch (const CLI::ArgumentMismatch& error) {
    const std::string_view what = error.what();
    if (what.find("At Most 1") == what.npos) throw UsageError(error.what());
    throw UsageError(std::string(what.substr(0, what.find(':'))) + " may be given once");
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  std::vector<std::string> operands = operandsOf(options, command.readsDashedWords());
  hidden.restore(operands);
  return command.run(std::move(operands), console);
}

ExitCode complain(Console& console, std::string_view command, std::string_view what) {
  console.diagnostics.message(what);
  console.diagnostics.message(std::string("try \"ferncase ").append(command).append("--help\""));
  return kMisused;
}

}  // namespace

std::vector<std::unique_ptr<Command>> makeCommands() {
  std::vector<std::unique_ptr<Command>> commands;
  for (auto make : kCommands) commands.push_back(make());
  return commands;
}

void prepareOptions(Command& command, CLI::App& options) {
  options.set_help_flag("-h,--help", "Print this help and exit");
  command.declareOptions(options);
}

ExitCode runCommandLine(const std::vector<std::string>& arguments, Console& console) {
  if (arguments.empty()) {
    console.diagnostics.text(generalHelp());
    return kMisused;
  }
  const std::string& first = arguments.front();
  if (first == "--help" || first == "-h" || first == "help") {
    if (arguments.size() > 1) return runCommandLine({arguments[1], "--help"}, console);
    console.output.write(generalHelp());
    return kDone;
  }
  if (first == "--version") {
    console.output.write(kVersion);
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
