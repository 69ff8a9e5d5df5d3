#include "host/import/FileCopy.h"

#include <cerrno>
#include <cstdint>
#include <vector>

#include "platform/files/FileErrors.h"
#include "platform/files/FileSystem.h"
#include "platform/files/NSURL.h"
#include "platform/files/ReadableFile.h"

namespace kbx {
namespace {

struct Failure {
  FileAction action = FileAction::Reading;
  int number = 0;  // an `errno` value; 0 for none
};

int writeAll(int descriptor, const char* bytes, std::int64_t size) {
  while (size > 0) {
    const std::int64_t count =
        FileSystem::current().write(descriptor, bytes, static_cast<std::size_t>(size));
    if (count <= 0) return count < 0 ? static_cast<int>(-count) : EIO;
    bytes += count;
    size -= count;
  }
  return 0;
}

Failure copy(int from, int to) {
  std::vector<char> buffer(1 << 16);
  std::uint64_t total = 0;
  while (true) {
    const std::int64_t count = FileSystem::current().read(from, buffer.data(), buffer.size());
    if (count == 0) return {};
    if (count < 0) return {FileAction::Reading, static_cast<int>(-count)};
    total += static_cast<std::uint64_t>(count);
    if (total > ReadableFile::kLargest) return {FileAction::Reading, EFBIG};
    if (int number = writeAll(to, buffer.data(), count)) return {FileAction::Writing, number};
  }
}

Failure copyToPath(int from, const std::string& path) {
  auto& files = FileSystem::current();
  const int descriptor = files.open(path, FileSystem::Opening::CreatingNew);
  if (descriptor < 0) return {FileAction::Writing, -descriptor};
  const Failure failure = copy(from, descriptor);
  const int closed = files.close(descriptor);
  return failure.number || closed == 0 ? failure : Failure{FileAction::Writing, -closed};
}

}  // namespace

bool copyToNewFile(int descriptor, const std::string& path, Ref<NSError>* error) {
  const Failure failure = copyToPath(descriptor, path);
  if (failure.number == 0) return true;
  auto url = NSURL::fileURLWithFileSystemRepresentation(path, false);
  if (error) *error = fileError(url, failure.action, failure.number);
  return false;
}

}  // namespace kbx
