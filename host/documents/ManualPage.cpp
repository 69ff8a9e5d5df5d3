#include "host/documents/ManualPage.h"

#include <algorithm>
#include <utility>

namespace kbx {
namespace {

constexpr std::pair<const char*, const char*> kExitCodes[] = {
    {"0", "Done."},
    {"1", "Standard output could not be written; or nothing was found, or a problem was."},
    {"2", "The command line means nothing."},
    {"3", "Some inputs failed, the others were delivered."},
    {"4", "No input was delivered."},
    {"5", "The store of messages is not there, or cannot be read or written."},
    {"141", "Whoever read standard output has gone."},
};

constexpr std::pair<const char*, const char*> kVariables[] = {
    {"XDG_DATA_HOME",
     "The user's store, ferncase/mail.db, and importers, ferncase/Library/Spotlight, lie in it."},
    {"XDG_RUNTIME_DIR", "Where messages are staged; otherwise /dev/shm."},
    {"TMPDIR", "Where messages are staged that are large."},
    {"KBX_SYSTEM_ROOT", "The folder below which the system's importers are looked for."},
};

/// The text as it is: no letter of it is a command, no hyphen a place to break.
std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '\\')
      result += "\\e";
    else if (c == '-')
      result += "\\-";
    else
      result += c;
  }
  return result;
}

/// One that stands at the beginning of a line.
std::string line(std::string_view text) {
  const bool isCommand = text.starts_with('.') || text.starts_with('\'');
  return (isCommand ? "\\&" : "") + escaped(text) + "\n";
}

std::string bold(std::string_view text) { return "\\fB" + escaped(text) + "\\fR"; }
std::string italic(std::string_view text) { return "\\fI" + escaped(text) + "\\fR"; }

std::string head(std::string_view name, std::string_view summary) {
  std::string title(name);
  std::ranges::transform(title, title.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  std::string what(summary);
  if (what.ends_with('.')) what.pop_back();
  return ".TH " + escaped(title) + " 1 \"\" \"ferncase " FERNCASE_VERSION "\" \"Ferncase\"\n" +
         ".SH NAME\n" + escaped(name) + " \\- " + escaped(what) + "\n";
}

/// Paragraphs are filled; lines that begin with a blank stay as they are.
std::string paragraphs(std::string_view text) {
  std::string result;
  bool isKept = false;
  const auto keep = [&](bool kept) {
    if (kept != isKept) result += kept ? ".nf\n" : ".fi\n";
    isKept = kept;
  };
  while (!text.empty()) {
    const std::string_view next = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(next.size() + 1, text.size()));
    keep(next.starts_with(' '));
    result += next.empty() ? ".PP\n" : line(next);
  }
  keep(false);
  return result;
}

std::string optionEntry(const OptionOutline& option) {
  std::string names;
  for (const std::string& name : option.names) names += (names.empty() ? "" : ", ") + bold(name);
  if (!option.value.empty()) names += " " + italic(option.value);
  return ".TP\n" + names + "\n" + line(option.description + ".");
}

template <class Pairs>
std::string section(std::string_view title, const Pairs& pairs) {
  std::string text = ".SH " + std::string(title) + "\n";
  for (const auto& [term, meaning] : pairs) text += ".TP\n" + bold(term) + "\n" + line(meaning);
  return text;
}

}  // namespace

std::string manualPage(const CommandOutline& command) {
  std::string text = head("ferncase-" + command.name, command.summary);
  text += ".SH SYNOPSIS\n" + bold("ferncase " + command.name) + " [" + italic("OPTIONS") + "] " +
          escaped(command.operands) + "\n";
  text += ".SH DESCRIPTION\n" + line(command.summary);
  if (!command.notes.empty()) text += ".PP\n" + paragraphs(command.notes);
  text += ".SH OPTIONS\n";
  for (const OptionOutline& option : command.options) text += optionEntry(option);
  return text + ".SH SEE ALSO\n.BR ferncase (1)\n";
}

std::string manualPage(std::span<const CommandOutline> commands) {
  std::string text = head("ferncase", "Finds the searchable attributes of e-mail messages.");
  text += ".SH SYNOPSIS\n" + bold("ferncase") + " " + italic("COMMAND") + " [" + italic("OPTIONS") +
          "] ...\n.br\n" + bold("ferncase --help") + " | " + bold("--version") + "\n";
  text += ".SH DESCRIPTION\n" +
          line(
              "Each command has a manual page of its own. Standard output holds data alone; what "
              "is said about the work goes to standard error, a line for each input that failed.");
  text += ".SH COMMANDS\n";
  for (const CommandOutline& command : commands)
    text += ".TP\n\\fBferncase\\-" + escaped(command.name) + "\\fR(1)\n" + line(command.summary);
  text += section("EXIT STATUS", kExitCodes);
  text +=
      ".PP\n" + line("The page of a command tells where it means something else by one of them.");
  return text + section("ENVIRONMENT", kVariables);
}

}  // namespace kbx
