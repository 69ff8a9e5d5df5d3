#include "platform/preferences/PreferencesFolder.h"

#include <string_view>

#include "platform/system/Environment.h"

namespace kbx {
namespace {

constexpr char kFolder[] = "/ferncase/preferences";

/// The value of a variable that names an absolute path; any other counts for nothing. The first
/// entry of a name is the variable, as for everybody else.
std::optional<std::string> pathIn(std::string_view variable) {
  const std::string start = std::string(variable) + "=";
  for (const auto& entry : Environment::current().variables())
    if (entry.starts_with(start))
      return entry.starts_with(start + "/") ? std::optional(entry.substr(start.size()))
                                            : std::nullopt;
  return std::nullopt;
}

bool mustBeEscaped(char letter, bool isFirst) {
  const auto byte = static_cast<unsigned char>(letter);
  return letter == '/' || letter == '%' || byte < 0x20 || byte == 0x7F ||
         (isFirst && letter == '.');
}

void appendEscaped(std::string& name, char letter) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  const auto byte = static_cast<unsigned char>(letter);
  name.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
}

}  // namespace

std::optional<std::string> preferencesFolder() {
  if (auto folder = pathIn("XDG_CONFIG_HOME")) return *folder + kFolder;
  if (auto home = pathIn("HOME")) return *home + "/.config" + kFolder;
  return std::nullopt;
}

std::optional<std::string> preferencesFileName(NSString* domain) {
  const auto text = domain ? domain->UTF8String() : std::nullopt;
  if (!text || text->empty()) return std::nullopt;
  std::string name;
  for (char letter : *text)
    if (mustBeEscaped(letter, name.empty()))
      appendEscaped(name, letter);
    else
      name += letter;
  return name + ".plist";
}

}  // namespace kbx
