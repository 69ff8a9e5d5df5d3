#include "host/import/PathList.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>

#include "host/console/Interruption.h"
#include "host/import/InputFiles.h"
#include "host/import/StandardInput.h"
#include "platform/files/FileErrors.h"
#include "platform/files/FileSystem.h"
#include "platform/files/NSURL.h"
#include "platform/files/ReadableFile.h"
#include "platform/objects/NSData.h"

namespace kbx {
namespace {

bool isPipe(const std::string& path) {
  FileStatus status;
  return FileSystem::current().statusOfPath(path, &status) == 0 &&
         status.kind == FileStatus::Kind::Other;
}

/// What comes through a pipe, such as a shell's <(…), which waits until somebody reads it.
bool addPathsInPipe(const std::string& path, char separator, std::vector<std::string>& paths,
                    Ref<NSError>* error) {
  const Interruption::Allowed whileWaiting;
  std::ifstream pipe(path, std::ios::binary);
  std::string list;
  std::vector<char> piece(1 << 16);
  bool fits = true;
  while (fits && pipe.read(piece.data(), static_cast<std::streamsize>(piece.size())).gcount() > 0) {
    list.append(piece.data(), static_cast<std::size_t>(pipe.gcount()));
    fits = list.size() <= ReadableFile::kLargest;
  }
  if (!pipe.is_open() || pipe.bad() || !fits) {
    auto url = NSURL::fileURLWithFileSystemRepresentation(path, false);
    *error = fileError(url, FileAction::Reading, fits ? errno : EFBIG);
    return false;
  }
  std::ranges::move(pathsIn(list, separator), std::back_inserter(paths));
  return true;
}

bool addPathsIn(NSURL* file, char separator, std::vector<std::string>& paths, Ref<NSError>* error) {
  auto list = NSData::dataWithContentsOfURL(file, NSDataReadingNone, error);
  if (!list) return false;
  std::ranges::move(pathsIn(list->view(), separator), std::back_inserter(paths));
  return true;
}

}  // namespace

std::vector<std::string> pathsIn(std::string_view list, char separator) {
  std::vector<std::string> paths;
  while (!list.empty()) {
    const std::string_view path = list.substr(0, list.find(separator));
    list.remove_prefix(std::min(path.size() + 1, list.size()));
    if (path == kStandardInputName)
      paths.emplace_back("./-");
    else if (!path.empty())
      paths.emplace_back(path);
  }
  return paths;
}

bool addPathsFrom(const std::string& file, char separator, std::vector<std::string>& paths,
                  Ref<NSError>* error) {
  if (file == kStandardInputName) {
    const StandardInput copy(error);
    return copy.url() && addPathsIn(copy.url(), separator, paths, error);
  }
  if (isPipe(file)) return addPathsInPipe(file, separator, paths, error);
  auto url = NSURL::fileURLWithFileSystemRepresentation(file, false);
  return addPathsIn(url, separator, paths, error);
}

}  // namespace kbx
