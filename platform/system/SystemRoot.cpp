#include "platform/system/SystemRoot.h"

#include "platform/system/Environment.h"

namespace kbx {
namespace {

constexpr std::string_view kVariable = "KBX_SYSTEM_ROOT=";

std::string systemRoot() {
  for (const auto& variable : Environment::current().variables())
    if (variable.starts_with(kVariable) && variable.size() > kVariable.size())
      return variable.substr(kVariable.size());
  return platformLibraryFolder();
}

}  // namespace

std::string pathBelowSystemRoot(std::string_view path) {
  if (!path.starts_with("/System/") && !path.starts_with("/Library/")) return std::string(path);
  std::string root = systemRoot();
  while (root.ends_with('/')) root.pop_back();
  return root.append(path);
}

}  // namespace kbx
