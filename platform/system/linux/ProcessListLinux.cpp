#include <charconv>
#include <filesystem>
#include <optional>

#include "platform/system/linux/ExecutableName.h"
#include "platform/system/linux/ProcessList.h"
#include "platform/system/linux/SmallFile.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;

/// The first number of the line "Uid:" is the real user; the folder's owner is not, as it is root
/// for a process that may not be looked into.
std::optional<std::uint32_t> realUser(const std::string& processFolder) {
  const std::string status = readSmallFile(processFolder + "/status");
  const std::size_t line = status.find("\nUid:");
  if (line == std::string::npos) return std::nullopt;
  const std::size_t start = status.find_first_not_of(" \t", line + 5);
  if (start == std::string::npos) return std::nullopt;
  std::uint32_t user = 0;
  const auto result = std::from_chars(status.data() + start, status.data() + status.size(), user);
  return result.ec == std::errc() ? std::optional(user) : std::nullopt;
}

/// The kernel's own short name stands in where there is no executable to be seen, as for a process
/// that has ended but was not waited for.
std::string processName(const std::string& processFolder) {
  if (std::string name = executableName(processFolder); !name.empty()) return name;
  std::string name = readSmallFile(processFolder + "/comm");
  if (name.ends_with('\n')) name.pop_back();
  return name;
}

bool isNumber(const std::string& name) {
  return name.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

std::vector<std::string> processNamesOfUser(const std::string& root, std::uint32_t user) {
  std::vector<std::string> result;
  std::error_code failure;
  for (fs::directory_iterator entry(root + "/proc", failure), end; !failure && entry != end;
       entry.increment(failure)) {
    if (!isNumber(entry->path().filename().string())) continue;
    const std::string folder = entry->path().string();
    if (realUser(folder) == user) result.push_back(processName(folder));
  }
  return result;
}

}  // namespace kbx
