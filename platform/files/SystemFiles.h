// SystemFiles: the file system of the operating system.
#pragma once

#include "platform/files/FileSystem.h"

namespace kbx {

/// A test double may derive from this and fail where it wants to.
class KBX_PLATFORM SystemFiles : public FileSystem {
 public:
  int open(const std::string& path, Opening how) override;
  std::int64_t read(int descriptor, void* buffer, std::size_t size) override;
  std::int64_t write(int descriptor, const void* bytes, std::size_t size) override;
  int status(int descriptor, FileStatus* status) override;
  int statusOfPath(const std::string& path, FileStatus* status) override;
  int statusOfLink(const std::string& path, FileStatus* status) override;
  int readLink(const std::string& path, std::string* target) override;
  int setMode(int descriptor, unsigned mode) override;
  int flush(int descriptor) override;
  int close(int descriptor) override;
  int rename(const std::string& from, const std::string& to) override;
  int remove(const std::string& path) override;
};

}  // namespace kbx
