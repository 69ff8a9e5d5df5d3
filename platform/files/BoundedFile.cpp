#include "platform/files/BoundedFile.h"

#include "platform/files/FileSystem.h"

namespace kbx {
namespace {

/// False when reading fails or the limit is passed.
bool readAll(int descriptor, std::size_t limit, std::string* bytes) {
  constexpr std::size_t kStep = std::size_t{1} << 16;
  while (true) {
    const std::size_t length = bytes->size();
    bytes->resize(length + kStep);
    const auto count = FileSystem::current().read(descriptor, bytes->data() + length, kStep);
    bytes->resize(length + static_cast<std::size_t>(count > 0 ? count : 0));
    if (count <= 0) return count == 0;
    if (bytes->size() > limit) return false;
  }
}

}  // namespace

std::optional<std::string> contentsOfFile(const std::string& path, std::size_t limit) {
  auto& files = FileSystem::current();
  const int descriptor = files.open(path, FileSystem::Opening::Reading);
  if (descriptor < 0) return std::nullopt;
  FileStatus status;
  std::string bytes;
  const bool isRead = files.status(descriptor, &status) == 0 &&
                      status.kind == FileStatus::Kind::Regular &&
                      readAll(descriptor, limit, &bytes);
  files.close(descriptor);
  if (!isRead) return std::nullopt;
  return bytes;
}

}  // namespace kbx
