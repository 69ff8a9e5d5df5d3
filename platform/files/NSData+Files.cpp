// NSData: reading a file whole, and writing one.
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "platform/files/FileErrors.h"
#include "platform/files/FileSystem.h"
#include "platform/files/LeftoverFile.h"
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

constexpr int kPlaces = 8;  // for that many writers of one file at the same time

/// The same for one file in every process, so that what a dead one left there is found again.
std::string placeBeside(const std::string& path, int number) {
  const std::size_t name = path.rfind('/') + 1;
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char byte : std::string_view(path).substr(name))
    hash = (hash ^ static_cast<std::uint8_t>(byte)) * 0x100000001B3;
  return path.substr(0, name) + ".write-" + std::to_string(hash) + "-" + std::to_string(number);
}

/// A place that nobody can have taken on purpose.
std::string anyPlaceBeside(const std::string& path) {
  std::random_device random;
  return placeBeside(path, 0) + "-" + std::to_string(random()) + std::to_string(random());
}

/// A file that a write fills before it gets its name; removed where it never does.
class NewFile {
 public:
  explicit NewFile(const std::string& target) : _files(FileSystem::current()) { open(target); }
  ~NewFile() {
    close();
    if (_isOurs) _files.remove(_path);
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  int fill(std::string_view bytes, const FileStatus* before) {
    if (_descriptor < 0) return _descriptor;
    if (before) _files.setMode(_descriptor, before->mode);
    int result = writeAll(_descriptor, bytes);
    if (result >= 0) result = _files.flush(_descriptor);
    const int closed = close();
    return result < 0 ? result : closed;
  }
  int rename(const std::string& target) {
    const int result = _files.rename(_path, target);
    if (result >= 0) _isOurs = false;
    return result;
  }

 private:
  void open(const std::string& target) {
    int number = 0;
    while (number < kPlaces && !isOpened(placeBeside(target, number))) ++number;
    if (number == kPlaces) openAt(anyPlaceBeside(target));
    while (++number < kPlaces && removeLeftover(placeBeside(target, number))) continue;
  }
  /// False when somebody has taken the place.
  bool isOpened(const std::string& place) {
    if (openAt(place) != -EEXIST) return true;
    return removeLeftover(place) && openAt(place) != -EEXIST;
  }
  int openAt(const std::string& place) {
    _path = place;
    _descriptor = _files.open(place, FileSystem::Opening::CreatingNew);
    _isOurs = _descriptor >= 0;
    return _descriptor;
  }
  int close() { return _descriptor < 0 ? 0 : _files.close(std::exchange(_descriptor, -1)); }

  FileSystem& _files;
  std::string _path;
  int _descriptor = -1;
  bool _isOurs = false;
};

int writeAtomically(const std::string& path, std::string_view bytes) {
  FileStatus before;
  const bool existed = FileSystem::current().statusOfPath(path, &before) == 0;
  NewFile file(path);
  const int result = file.fill(bytes, existed ? &before : nullptr);
  return result < 0 ? result : file.rename(path);
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
