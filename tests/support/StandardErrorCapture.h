// StandardErrorCapture: what the process writes to standard error, for a test to read.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <string>

namespace kbx {

/// Standard error goes to a file without a name while it lives. One at a time.
class StandardErrorCapture {
 public:
  StandardErrorCapture() { dup2(fileno(_file), STDERR_FILENO); }
  ~StandardErrorCapture() {
    dup2(_before, STDERR_FILENO);
    close(_before);
    std::fclose(_file);
  }
  StandardErrorCapture(const StandardErrorCapture&) = delete;
  StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;

  std::string text() const {
    std::string bytes(static_cast<std::size_t>(lseek(fileno(_file), 0, SEEK_END)), '\0');
    const ssize_t count = pread(fileno(_file), bytes.data(), bytes.size(), 0);
    bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    return bytes;
  }

 private:
  std::FILE* const _file = std::tmpfile();
  const int _before = dup(STDERR_FILENO);
};

}  // namespace kbx
