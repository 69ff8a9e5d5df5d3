#include "host/workers/ImportFiles.h"

#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>

#include "host/import/ImporterCatalog.h"
#include "host/workers/SystemFiles.h"
#include "platform/desktop/DesktopFolders.h"
#include "platform/files/FileSystem.h"
#include "platform/preferences/PreferencesFolder.h"
#include "platform/system/SystemRoot.h"

namespace kbx {
namespace {

constexpr std::size_t kMostNamedFiles = 1024;

std::string folderOfPath(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  if (slash == path.npos) return ".";
  return std::string(path.substr(0, slash == 0 ? 1 : slash));
}

bool isFolder(const std::string& path) {
  FileStatus status;
  return FileSystem::current().statusOfPath(path, &status) == 0 && status.isFolder();
}

void addInputs(const ImportSettings& settings, AllowedFiles& files) {
  const bool isBeside = settings.usesMailImporter && !settings.isStagedPrivately;
  const bool areMany = settings.inputs.size() > kMostNamedFiles;
  std::set<std::string> readable, writable;
  for (const auto& path : settings.inputs) {
    const std::string folder = isFolder(path) ? path : folderOfPath(path);
    (isBeside ? writable : readable).insert(isBeside || areMany ? folder : path);
  }
  files.readable.insert(files.readable.end(), readable.begin(), readable.end());
  files.writable.insert(files.writable.end(), writable.begin(), writable.end());
}

void addImporters(const ImportSettings& settings, AllowedFiles& files) {
  for (const std::string& folder : importerFolders()) {
    files.readable.push_back(folder);
    std::error_code failure;  // a bundle may lie elsewhere, with a link here
    for (std::filesystem::directory_iterator at(folder, failure), end; !failure && at != end;
         at.increment(failure))
      if (at->is_symlink()) files.readable.push_back(at->path().string());
  }
  files.readable.push_back(pathBelowSystemRoot("/System/Library"));
  if (settings.importer) files.readable.push_back(*settings.importer);
}

/// What the platform itself reads: the types of files, and the user's preferences.
void addPlatform(AllowedFiles& files) {
  for (const auto& folder : dataFolders()) files.readable.push_back(folder + "/mime");
  if (auto folder = preferencesFolder()) files.readable.push_back(*folder);
}

}  // namespace

AllowedFiles filesForImporting(const ImportSettings& settings) {
  AllowedFiles files{systemFiles(), {}};
  addPlatform(files);
  addImporters(settings, files);
  addInputs(settings, files);
  return files;
}

}  // namespace kbx
