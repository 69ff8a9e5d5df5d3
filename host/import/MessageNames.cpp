#include "host/import/MessageNames.h"

#include <algorithm>
#include <filesystem>

#include "platform/files/FileSystem.h"
#include "platform/text/ASCII.h"

namespace kbx {
namespace {

constexpr std::string_view kMaildirFolders[] = {"cur", "new", "tmp"};

bool isFolder(const std::string& path) {
  FileStatus status;
  return FileSystem::current().statusOfPath(path, &status) == 0 && status.isFolder();
}

/// Whether a name is that of a folder in which a Maildir keeps its messages; "tmp" holds what is
/// being delivered.
bool holdsMessages(std::string_view name) { return name == "cur" || name == "new"; }

/// The path without dots and slashes at its end, so that its last name is that of the folder.
std::filesystem::path plain(const std::string& path) {
  std::error_code unknown;
  auto absolute = std::filesystem::absolute(path, unknown).lexically_normal();
  return absolute.has_filename() ? absolute : absolute.parent_path();
}

}  // namespace

bool isMessageName(std::string_view name) {
  return endsIgnoringASCIICase(name, ".eml") || endsIgnoringASCIICase(name, ".emlx");
}

bool isMaildirFolder(const std::string& path) {
  const auto folder = plain(path);
  if (!holdsMessages(folder.filename().native())) return false;
  const std::string around = folder.parent_path().string() + "/";
  return std::ranges::count_if(kMaildirFolders, [&](std::string_view name) {
           return isFolder(around + std::string(name));
         }) > 1;
}

bool isMaildirMessageName(std::string_view name) {
  return !name.empty() && !name.starts_with('.') && !isMessageName(name);
}

bool isMaildirMessage(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const std::string_view name = std::string_view(path).substr(slash + 1);
  return isMaildirMessageName(name) &&
         isMaildirFolder(slash == std::string::npos ? "." : path.substr(0, slash));
}

}  // namespace kbx
