#include "host/store/Store.h"
#include "platform/system/Environment.h"

namespace kbx {
namespace {

std::string variable(std::string_view name) {
  for (const std::string& entry : Environment::current().variables())
    if (entry.size() > name.size() && entry.starts_with(name) && entry[name.size()] == '=')
      return entry.substr(name.size() + 1);
  return {};
}

}  // namespace

std::optional<std::string> defaultStorePath() {
  std::string folder = variable("XDG_DATA_HOME");
  if (!folder.starts_with('/')) {
    folder = variable("HOME");
    if (!folder.starts_with('/')) return std::nullopt;
    folder += "/.local/share";
  }
  return folder + "/ferncase/mail.db";
}

}  // namespace kbx
