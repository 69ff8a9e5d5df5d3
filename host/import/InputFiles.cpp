#include "host/import/InputFiles.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "host/console/FerncaseErrors.h"
#include "host/import/MessageNames.h"
#include "platform/files/FileErrors.h"
#include "platform/files/FileSystem.h"
#include "platform/files/NSURL.h"

namespace kbx {
namespace {

bool isFolder(const std::string& path) {
  FileStatus status;
  return FileSystem::current().statusOfPath(path, &status) == 0 &&
         status.kind == FileStatus::Kind::Directory;
}

/// What an importer writes beside a message while it works, and may have left behind.
bool isTemporaryName(std::string_view name) { return name.starts_with(".temp-KBXEMLXFile-"); }

std::string joined(const std::string& folder, const std::string& name) {
  return folder.ends_with('/') ? folder + name : folder + "/" + name;
}

Ref<NSError> readingError(const std::string& path, const std::error_code& failure) {
  auto url = NSURL::fileURLWithFileSystemRepresentation(path, true);
  return fileError(url, FileAction::Reading, failure.value());
}

Ref<NSError> noMessagesError() {
  return ferncaseError(FerncaseNoMessagesError,
                       "The folder holds no message (.eml, .emlx or Maildir).");
}

}  // namespace

std::optional<Input> InputFiles::next() {
  auto input = nextOfFolders();
  return input ? input : nextArgument();
}

std::optional<Input> InputFiles::nextArgument() {
  while (_position < _arguments.size()) {
    const std::string& path = _arguments[_position++];
    if (path == kStandardInputName || !isFolder(path)) return Input{path, nullptr};
    _foundNothing = true;
    if (auto input = enter(path)) return input;
    if (auto input = nextOfFolders()) return input;
  }
  return std::nullopt;
}

/// Goes on in the innermost folder, and in those around it when it ends.
std::optional<Input> InputFiles::nextOfFolders() {
  while (!_folders.empty()) {
    Folder& folder = _folders.back();
    if (folder.position == folder.entries.size()) {
      std::string path = std::move(folder.path);
      _folders.pop_back();
      if (_folders.empty() && _foundNothing) return Input{std::move(path), noMessagesError()};
      continue;
    }
    const Entry& entry = folder.entries[folder.position++];
    std::string path = joined(folder.path, entry.name);
    if (!entry.isFolder) {
      _foundNothing = false;
      return Input{std::move(path), nullptr};
    }
    if (auto input = enter(std::move(path))) return input;
  }
  return std::nullopt;
}

/// Reads a folder, which is the one to walk then. Answers why it could not be read to its end.
std::optional<Input> InputFiles::enter(std::string path) {
  const bool isMaildir = isMaildirFolder(path);
  std::vector<Entry> entries;
  std::error_code failure;
  std::filesystem::directory_iterator at(path, failure);
  while (!failure && at != std::filesystem::directory_iterator()) {
    std::error_code unknown;  // what is no folder for certain is a file, and fails as one
    const bool isFolder = !at->is_symlink(unknown) && at->is_directory(unknown);
    std::string name = at->path().filename().string();
    const bool isMessage = isMessageName(name) || (isMaildir && isMaildirMessageName(name));
    if (!isTemporaryName(name) && (isFolder || isMessage))
      entries.push_back({std::move(name), isFolder});
    at.increment(failure);
  }
  std::ranges::sort(entries, {}, &Entry::name);
  _folders.push_back({path, std::move(entries)});
  if (!failure) return std::nullopt;
  _foundNothing = false;
  return Input{path, readingError(path, failure)};
}

}  // namespace kbx
