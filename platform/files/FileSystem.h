// FileSystem: the calls to the operating system that reading and writing files stand on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/system/Service.h"

namespace kbx {

struct FileStatus {
  enum class Kind : std::uint8_t { Regular, Directory, SymbolicLink, Other };
  Kind kind = Kind::Other;
  std::uint64_t size = 0;  // bytes
  unsigned mode = 0;       // permission bits
  // Which file it is: two paths with the same numbers name one file.
  std::uint64_t device = 0;
  std::uint64_t number = 0;

  bool isFolder() const noexcept { return kind == Kind::Directory; }
  bool isSameFile(const FileStatus& other) const noexcept {
    return device == other.device && number == other.number;
  }
};

/// Opens, reads, writes, renames and removes. Paths are bytes in the file system's form. Every call
/// answers zero or a count when it worked and the negative error number (-ENOENT) when not; calls
/// that a signal interrupted are made again. Safe from any thread.
class KBX_PLATFORM FileSystem {
 public:
  enum class Opening : std::uint8_t {
    Reading,      // never waits for a pipe's other end
    Replacing,    // creates the file or empties it
    CreatingNew,  // fails when something of that name exists
  };

  virtual ~FileSystem();

  /// A descriptor.
  virtual int open(const std::string& path, Opening how) = 0;
  virtual std::int64_t read(int descriptor, void* buffer, std::size_t size) = 0;
  virtual std::int64_t write(int descriptor, const void* bytes, std::size_t size) = 0;
  /// Of what is open.
  virtual int status(int descriptor, FileStatus* status) = 0;
  /// Of what the path names, links followed.
  virtual int statusOfPath(const std::string& path, FileStatus* status) = 0;
  /// Of what the path names, a link at its end not followed.
  virtual int statusOfLink(const std::string& path, FileStatus* status) = 0;
  /// Stores where the link at the path's end leads; -EINVAL for what is no link.
  virtual int readLink(const std::string& path, std::string* target) = 0;
  virtual int setMode(int descriptor, unsigned mode) = 0;
  /// Returns when the bytes are on the disk.
  virtual int flush(int descriptor) = 0;
  virtual int close(int descriptor) = 0;
  virtual int rename(const std::string& from, const std::string& to) = 0;
  /// Of a file or an empty folder.
  virtual int remove(const std::string& path) = 0;

  KBX_SERVICE_INTERFACE(FileSystem)
};

}  // namespace kbx
