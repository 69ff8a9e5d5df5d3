#include "host/export/ReplacedFile.h"

#include <cerrno>
#include <utility>

#include "platform/files/FileErrors.h"
#include "platform/files/FileSystem.h"
#include "platform/files/NSURL.h"
#include "platform/system/UUID.h"

namespace kbx {
namespace {

Ref<NSError> writingError(const std::string& path, int failure) {
  auto url = NSURL::fileURLWithFileSystemRepresentation(path, false);
  return fileError(url, FileAction::Writing, failure);
}

/// In the same folder, so that it can be renamed; hidden, so that nobody takes it for the file.
std::string besideOf(const std::string& path) {
  const std::size_t name = path.rfind('/') + 1;
  return path.substr(0, name) + ".ferncase-export-" + uuidString(randomUUID());
}

}  // namespace

std::unique_ptr<ReplacedFile> ReplacedFile::open(const std::string& path, Ref<NSError>* error) {
  FileSystem& files = FileSystem::current();
  FileStatus status;
  const bool isThere = files.statusOfPath(path, &status) == 0;
  const bool isItself = isThere && status.kind != FileStatus::Kind::Regular;
  std::string beside = isItself ? "" : besideOf(path);
  const int descriptor = isItself ? files.open(path, FileSystem::Opening::Replacing)
                                  : files.open(beside, FileSystem::Opening::CreatingNew);
  if (descriptor >= 0)
    return std::unique_ptr<ReplacedFile>(new ReplacedFile(path, std::move(beside), descriptor));
  *error = writingError(path, -descriptor);
  return nullptr;
}

ReplacedFile::~ReplacedFile() {
  _output.flush();
  if (_descriptor >= 0) FileSystem::current().close(_descriptor);
  if (!_beside.empty()) FileSystem::current().remove(_beside);
}

bool ReplacedFile::finish(Ref<NSError>* error) {
  FileSystem& files = FileSystem::current();
  _output.flush();
  int failure = _output.failure();
  if (failure == 0 && !_beside.empty()) failure = -files.flush(_descriptor);
  const int closing = -files.close(std::exchange(_descriptor, -1));
  if (failure == 0) failure = closing;
  if (failure == 0 && !_beside.empty()) failure = -files.rename(_beside, _path);
  if (failure == 0) _beside.clear();
  if (failure != 0) *error = writingError(_path, failure);
  return failure == 0;
}

}  // namespace kbx
