// NSData: reading a file whole, and writing one.
#include <cerrno>
#include <cstdlib>
#include <new>
#include <random>
#include <string>

#include "platform/files/FileErrors.h"
#include "platform/files/FileSystem.h"
#include "platform/files/NSURL.h"
#include "platform/files/ReadableFile.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSError.h"
#include "platform/objects/NSException.h"

namespace kbx {
namespace {

/// A file to write; closed whatever happens.
class OpenFile {
 public:
  OpenFile(const std::string& path, FileSystem::Opening how)
      : _files(FileSystem::current()), _descriptor(_files.open(path, how)) {}
  ~OpenFile() { close(); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  /// Not negative, or the negative error number of opening.
  int descriptor() const { return _descriptor; }
  int close() { return _descriptor < 0 ? 0 : _files.close(std::exchange(_descriptor, -1)); }

 private:
  FileSystem& _files;
  int _descriptor;
};

/// A growing block of the C allocator.
class Block {
 public:
  ~Block() { std::free(_bytes); }
  char* bytes() { return _bytes; }
  std::size_t capacity() const { return _capacity; }
  bool grow(std::size_t capacity) {
    void* block = std::realloc(_bytes, capacity);
    if (!block) return false;
    _bytes = static_cast<char*>(block), _capacity = capacity;
    return true;
  }
  void* release() { return std::exchange(_bytes, nullptr); }

 private:
  char* _bytes = nullptr;
  std::size_t _capacity = 0;
};

/// Reads to the end, whatever size was promised: a file may grow while it is read. Zero or the
/// negative error number.
int readToEnd(int descriptor, std::uint64_t expected, Block& block, std::size_t* length) {
  // One byte more than expected, so that the read which finds the end needs no growth.
  if (!block.grow(static_cast<std::size_t>(expected) + 1)) return -ENOMEM;
  for (*length = 0;;) {
    if (*length == block.capacity() && !block.grow(block.capacity() * 2 + 4096)) return -ENOMEM;
    const std::int64_t count =
        FileSystem::current().read(descriptor, block.bytes() + *length, block.capacity() - *length);
    if (count < 0) return static_cast<int>(count);
    if (count == 0) return 0;
    *length += static_cast<std::size_t>(count);
    if (*length > ReadableFile::kLargest) return -EFBIG;
  }
}

bool failWith(Ref<NSError>* error, NSURL* url, FileAction action, std::int64_t result) {
  if (error) *error = fileError(url, action, static_cast<int>(-result));
  return false;
}

int writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const std::int64_t count = FileSystem::current().write(descriptor, bytes.data(), bytes.size());
    if (count < 0) return static_cast<int>(count);
    if (count == 0) return -EIO;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

int writeInPlace(const std::string& path, std::string_view bytes) {
  OpenFile file(path, FileSystem::Opening::Replacing);
  if (file.descriptor() < 0) return file.descriptor();
  const int result = writeAll(file.descriptor(), bytes);
  const int closed = file.close();
  return result < 0 ? result : closed;
}

std::string nameBeside(const std::string& path) {
  const std::size_t name = path.rfind('/') + 1;
  std::random_device random;
  return path.substr(0, name) + ".write-" + std::to_string(random()) + std::to_string(random());
}

int writeNewFile(const std::string& beside, std::string_view bytes, const FileStatus* before) {
  OpenFile file(beside, FileSystem::Opening::CreatingNew);
  if (file.descriptor() < 0) return file.descriptor();
  auto& files = FileSystem::current();
  if (before) files.setMode(file.descriptor(), before->mode);
  int result = writeAll(file.descriptor(), bytes);
  if (result >= 0) result = files.flush(file.descriptor());
  const int closed = file.close();
  return result < 0 ? result : closed;
}

int writeAtomically(const std::string& path, std::string_view bytes) {
  auto& files = FileSystem::current();
  FileStatus before;
  const bool existed = files.statusOfPath(path, &before) == 0;
  const std::string beside = nameBeside(path);
  int result = writeNewFile(beside, bytes, existed ? &before : nullptr);
  if (result == -EEXIST) return result;  // somebody else's file
  if (result >= 0) result = files.rename(beside, path);
  if (result < 0) files.remove(beside);
  return result;
}

}  // namespace

Ref<NSData> NSData::dataWithContentsOfURL(NSURL* url, NSDataReadingOptions, Ref<NSError>* error) {
  if (!url) raiseInvalidArgument("-[NSData initWithContentsOfURL:options:error:]: nil URL");
  const ReadableFile file(url, error);
  if (!file.isOpen()) return nullptr;
  Block block;
  std::size_t length = 0;
  const int result = readToEnd(file.descriptor(), file.size(), block, &length);
  if (result < 0) {
    failWith(error, url, FileAction::Reading, result);
    return nullptr;
  }
  return dataWithBytesNoCopy(block.release(), length);
}

bool NSData::writeToURL(NSURL* url, NSDataWritingOptions options, Ref<NSError>* error) {
  if (!url) raiseInvalidArgument("-[NSData writeToURL:options:error:]: nil URL");
  const std::string& path = url->fileSystemRepresentation();
  const int result =
      options & NSDataWritingAtomic ? writeAtomically(path, view()) : writeInPlace(path, view());
  return result >= 0 || failWith(error, url, FileAction::Writing, result);
}

}  // namespace kbx
