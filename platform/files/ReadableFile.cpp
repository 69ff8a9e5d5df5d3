#include "platform/files/ReadableFile.h"

#include <cerrno>

#include "platform/files/FileErrors.h"
#include "platform/files/FileSystem.h"
#include "platform/files/NSURL.h"

namespace kbx {
namespace {

/// Whether the location names a regular file of a size that can be read.
bool checkReadable(NSURL* url, int result, const FileStatus& status, Ref<NSError>* error) {
  const bool isRegular = result >= 0 && status.kind == FileStatus::Kind::Regular;
  if (isRegular && status.size <= ReadableFile::kLargest) return true;
  if (!error) return false;
  if (result >= 0 && !isRegular)
    *error = notRegularFileError(url, status.kind == FileStatus::Kind::Directory);
  else
    *error = fileError(url, FileAction::Reading, result < 0 ? -result : EFBIG);
  return false;
}

}  // namespace

ReadableFile::ReadableFile(NSURL* url, Ref<NSError>* error) : _files(FileSystem::current()) {
  const std::string& path = url->fileSystemRepresentation();
  // Looked at before it is opened, because opening a device can do something, and again when it is
  // open, because the name may mean another file by then.
  FileStatus status;
  if (!checkReadable(url, _files.statusOfPath(path, &status), status, error)) return;
  const int descriptor = _files.open(path, FileSystem::Opening::Reading);
  const int result = descriptor < 0 ? descriptor : _files.status(descriptor, &status);
  if (checkReadable(url, result, status, error)) {
    _descriptor = descriptor;
    _size = status.size;
  } else if (descriptor >= 0) {
    _files.close(descriptor);
  }
}

ReadableFile::~ReadableFile() {
  if (isOpen()) _files.close(_descriptor);
}

}  // namespace kbx
