#include "host/index/ContentHash.h"

#include <array>

#include "platform/files/FileErrors.h"
#include "platform/files/FileSystem.h"
#include "platform/files/NSURL.h"

namespace kbx {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 16;

class OpenFile {
 public:
  explicit OpenFile(const std::string& path)
      : _descriptor(FileSystem::current().open(path, FileSystem::Opening::Reading)) {}
  ~OpenFile() {
    if (_descriptor >= 0) FileSystem::current().close(_descriptor);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  /// Negative error numbers, as the file system gives them.
  int failure() const { return _descriptor < 0 ? _descriptor : 0; }
  /// Fills the buffer unless the file ends; how many bytes it holds then, or an error number.
  std::int64_t fill(char* buffer, std::size_t size) const {
    std::size_t filled = 0;
    while (filled < size) {
      const std::int64_t count =
          FileSystem::current().read(_descriptor, buffer + filled, size - filled);
      if (count < 0) return count;
      if (count == 0) break;
      filled += static_cast<std::size_t>(count);
    }
    return static_cast<std::int64_t>(filled);
  }

 private:
  const int _descriptor;
};

std::optional<ContentHash> told(const std::string& path, std::int64_t failure,
                                Ref<NSError>* error) {
  auto url = NSURL::fileURLWithFileSystemRepresentation(path, false);
  if (error) *error = fileError(url, FileAction::Reading, static_cast<int>(-failure));
  return std::nullopt;
}

}  // namespace

std::optional<ContentHash> contentHashOf(const std::string& path, HashKey key,
                                         Ref<NSError>* error) {
  const OpenFile file(path);
  if (file.failure()) return told(path, file.failure(), error);
  std::array<char, kPiece> buffer;
  std::int64_t count;
  do {
    count = file.fill(buffer.data(), buffer.size());
    if (count < 0) return told(path, count, error);
    // Each piece is hashed under a key that depends on all before it.
    key.first = sipHash({buffer.data(), static_cast<std::size_t>(count)}, key);
  } while (count == static_cast<std::int64_t>(buffer.size()));
  return key.first;
}

std::string bytesOf(ContentHash hash) {
  std::string bytes;
  for (int shift = 56; shift >= 0; shift -= 8) bytes += static_cast<char>(hash >> shift & 0xFF);
  return bytes;
}

std::optional<ContentHash> contentHashIn(std::string_view bytes) {
  if (bytes.size() != sizeof(ContentHash)) return std::nullopt;
  ContentHash hash = 0;
  for (char byte : bytes) hash = hash << 8 | static_cast<unsigned char>(byte);
  return hash;
}

}  // namespace kbx
