#include "host/documents/Completions.h"

namespace kbx {
namespace {

std::string quoted(std::string_view text) {
  std::string result = "'";
  for (const char c : text) result += (c == '\'' || c == '\\' ? "\\" : "") + std::string(1, c);
  return result + "'";
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::string valueOf(const OptionOutline& option) {
  if (option.value.empty()) return "";
  const auto words = option.valueWords();
  if (!words.empty()) return " -x -a " + quoted(joined(words));
  return option.takesPath() ? " -r -F" : " -x";
}

std::string lineOf(const OptionOutline& option, const std::string& condition) {
  std::string text = "complete -c ferncase -n " + condition;
  for (const std::string& name : option.names) {
    const bool isLong = name.starts_with("--");
    text += isLong ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  return text + valueOf(option) + " -d " + quoted(option.description) + "\n";
}

}  // namespace

std::string fishCompletion(std::span<const CommandOutline> commands) {
  std::string text =
      "# Completion of ferncase for fish, made from its own list of options.\n"
      "complete -c ferncase -n __fish_use_subcommand -f\n"
      "complete -c ferncase -n __fish_use_subcommand -l help -d 'Print help and exit'\n"
      "complete -c ferncase -n __fish_use_subcommand -l version -d 'Print the version and exit'\n";
  for (const CommandOutline& command : commands)
    text += "complete -c ferncase -n __fish_use_subcommand -a " + command.name + " -d " +
            quoted(command.summary) + "\n";
  for (const CommandOutline& command : commands) {
    const std::string condition = quoted("__fish_seen_subcommand_from " + command.name);
    if (const auto words = command.operandWords(); !words.empty())
      text += "complete -c ferncase -n " + condition + " -a " + quoted(joined(words)) + "\n";
    for (const OptionOutline& option : command.options) text += lineOf(option, condition);
  }
  return text;
}

}  // namespace kbx
