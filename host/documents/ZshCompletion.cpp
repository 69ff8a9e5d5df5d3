#include "host/documents/Completions.h"

namespace kbx {
namespace {

/// As it stands between single quotes, with a backslash before each of the signs.
std::string quoted(std::string_view text, std::string_view signs) {
  std::string result;
  for (const char c : text) {
    if (c == '\'')
      result += "'\\''";
    else
      result += (signs.find(c) == signs.npos ? "" : "\\") + std::string(1, c);
  }
  return result;
}

/// What may stand for a value: words, files, or anything.
std::string action(const OptionOutline& option) {
  std::string words;
  for (const std::string& word : option.valueWords()) words += (words.empty() ? "" : " ") + word;
  if (!words.empty()) return "(" + words + ")";
  return option.takesPath() ? "_files" : " ";
}

std::string argumentOf(const OptionOutline& option, const std::string& name) {
  const bool isLong = name.starts_with("--");
  const std::string ending = option.value.empty() ? "" : isLong ? "=" : "+";
  std::string text = "        '" + std::string(option.mayBeRepeated ? "*" : "") + name + ending;
  text += "[" + quoted(option.description, "[]\\") + "]";
  if (!option.value.empty()) text += ":" + option.value + ":" + action(option);
  return text + "' \\\n";
}

std::string branchOf(const CommandOutline& command) {
  std::string text = "    " + command.name + ")\n      _arguments \\\n";
  for (const OptionOutline& option : command.options)
    for (const std::string& name : option.names) text += argumentOf(option, name);
  std::string words;
  for (const std::string& word : command.operandWords()) words += " " + word;
  if (!words.empty()) text += "        '1:word:{_values word" + words + "; _files}' \\\n";
  return text + "        '*:file:_files'\n      ;;\n";
}

}  // namespace

std::string zshCompletion(std::span<const CommandOutline> commands) {
  std::string names, branches;
  for (const CommandOutline& command : commands) {
    names += "    '" + command.name + ":" + quoted(command.summary, ":\\") + "'\n";
    branches += branchOf(command);
  }
  return "#compdef ferncase\n"
         "# Completion of ferncase for zsh, made from its own list of options.\n"
         "_ferncase() {\n"
         "  local -a commands=(\n" +
         names +
         "  )\n"
         "  if ((CURRENT == 2)); then\n"
         "    _describe command commands\n"
         "    return\n"
         "  fi\n"
         "  local command=${words[2]}\n"
         "  shift words\n"
         "  ((CURRENT--))\n"
         "  case $command in\n" +
         branches +
         "  esac\n"
         "}\n"
         "if [[ $funcstack[1] == _ferncase ]]; then\n"
         "  _ferncase \"$@\"\n"
         "else\n"
         "  compdef _ferncase ferncase\n"
         "fi\n";
}

}  // namespace kbx
