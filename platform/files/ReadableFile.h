// ReadableFile: an open file that can be read whole.
#pragma once

#include <cstdint>

#include "platform/Export.h"
#include "platform/objects/Ref.h"

namespace kbx {

class FileSystem;
class NSError;
class NSURL;

/// A regular file of at most 2^31 - 1 bytes, open for reading while this lives.
class KBX_PLATFORM ReadableFile {
 public:
  /// Opens the file of the location. Without one isOpen() is false and the error is what
  /// +[NSData dataWithContentsOfURL:options:error:] fails with. Never waits for a pipe.
  ReadableFile(NSURL* url, Ref<NSError>* error);
  ~ReadableFile();
  ReadableFile(const ReadableFile&) = delete;
  ReadableFile& operator=(const ReadableFile&) = delete;

  bool isOpen() const noexcept { return _descriptor >= 0; }
  int descriptor() const noexcept { return _descriptor; }
  /// In bytes, when the file was opened; it may grow.
  std::uint64_t size() const noexcept { return _size; }

  /// Text services count in 32 bits, so what is longer could be read but not used.
  static constexpr std::uint64_t kLargest = INT32_MAX;

 private:
  FileSystem& _files;
  int _descriptor = -1;
  std::uint64_t _size = 0;
};

}  // namespace kbx
