#include "host/documents/Completions.h"

namespace kbx {
namespace {

/// Words that hold no blank, no quote and no sign that a shell would read.
std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::string choice(const std::string& words) {
  return "COMPREPLY=($(compgen -W '" + words + "' -- \"$word\"))";
}

/// The branches for values that are one of a few words.
std::string valueBranches(const CommandOutline& command) {
  std::string text;
  for (const OptionOutline& option : command.options) {
    const auto words = option.valueWords();
    for (const std::string& name : option.names)
      if (!words.empty())
        text += "    " + command.name + ":" + name + ") " + choice(joined(words)) + "; return ;;\n";
  }
  return text;
}

std::string optionNames(const CommandOutline& command) {
  std::vector<std::string> names;
  for (const OptionOutline& option : command.options)
    names.insert(names.end(), option.names.begin(), option.names.end());
  return joined(names);
}

}  // namespace

std::string bashCompletion(std::span<const CommandOutline> commands) {
  std::string names, values, options, operands;
  for (const CommandOutline& command : commands) {
    names += command.name + " ";
    values += valueBranches(command);
    options += "      " + command.name + ") " + choice(optionNames(command)) + " ;;\n";
    if (const auto words = command.operandWords(); !words.empty())
      operands += "    " + command.name + ":2) " + choice(joined(words)) + " ;;\n";
  }
  // Where nothing is proposed, the shell proposes files.
  return "# Completion of ferncase for bash, made from its own list of options.\n"
         "_ferncase() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}\n"
         "  # The shell takes --option=value for three words.\n"
         "  [[ $word == = ]] && word=\n"
         "  [[ $previous == = ]] && previous=${COMP_WORDS[COMP_CWORD - 2]}\n"
         "  COMPREPLY=()\n"
         "  if ((COMP_CWORD == 1)); then\n    " +
         choice(names + "help --help --version") +
         "\n    return\n"
         "  fi\n"
         "  case ${COMP_WORDS[1]}:$previous in\n" +
         values +
         "  esac\n"
         "  if [[ $word == -* ]]; then\n"
         "    case ${COMP_WORDS[1]} in\n" +
         options +
         "    esac\n"
         "    return\n"
         "  fi\n"
         "  case ${COMP_WORDS[1]}:$COMP_CWORD in\n" +
         operands + "    help:2) " + choice(names) +
         " ;;\n"
         "  esac\n"
         "}\n"
         "complete -o bashdefault -o default -F _ferncase ferncase\n";
}

}  // namespace kbx
