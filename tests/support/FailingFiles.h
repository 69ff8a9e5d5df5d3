// FailingFiles: the file system with faults that a test asks for.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "platform/files/SystemFiles.h"

namespace kbx {

/// Passes calls to the operating system and makes the chosen ones fail. For one thread.
class FailingFiles final : public SystemFiles {
 public:
  enum class Call : std::uint8_t { Open, Read, Write, Status, Flush, Close, Rename, Remove };

  /// Makes the call fail with the error number: at once, or after it worked `after` times.
  void fail(Call call, int number, int after = 0) { _faults[call] = {number, after}; }

  int open(const std::string& path, Opening how) override {
    const int fault = faultOf(Call::Open);
    return fault ? fault : SystemFiles::open(path, how);
  }
  std::int64_t read(int descriptor, void* buffer, std::size_t size) override {
    const int fault = faultOf(Call::Read);
    return fault ? fault : SystemFiles::read(descriptor, buffer, std::min(size, largestRead));
  }
  std::int64_t write(int descriptor, const void* bytes, std::size_t size) override {
    const int fault = faultOf(Call::Write);
    return fault ? fault : SystemFiles::write(descriptor, bytes, std::min(size, largestWrite));
  }
  int status(int descriptor, FileStatus* status) override {
    const int fault = faultOf(Call::Status);
    return fault ? fault : SystemFiles::status(descriptor, status);
  }
  int flush(int descriptor) override {
    const int fault = faultOf(Call::Flush);
    return fault ? fault : SystemFiles::flush(descriptor);
  }
  int close(int descriptor) override {
    const int result = SystemFiles::close(descriptor);
    const int fault = faultOf(Call::Close);
    return fault ? fault : result;
  }
  int rename(const std::string& from, const std::string& to) override {
    const int fault = faultOf(Call::Rename);
    return fault ? fault : SystemFiles::rename(from, to);
  }
  int remove(const std::string& path) override {
    const int fault = faultOf(Call::Remove);
    return fault ? fault : SystemFiles::remove(path);
  }

  std::size_t largestRead = SIZE_MAX;   // bytes that one read answers at the most
  std::size_t largestWrite = SIZE_MAX;  // bytes that one write takes at the most

 private:
  struct Fault {
    int number;
    int after;
  };
  int faultOf(Call call) {
    auto found = _faults.find(call);
    if (found == _faults.end()) return 0;
    return found->second.after-- > 0 ? 0 : -found->second.number;
  }

  std::map<Call, Fault> _faults;
};

}  // namespace kbx
