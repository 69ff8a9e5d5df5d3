// RecordingLog: a classic log that keeps its lines for a test to read.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/logging/NSLog.h"

namespace kbx {

/// Installed while it lives. Safe from any thread.
class RecordingLog final : public ClassicLog {
 public:
  void write(NSString* message) override {
    std::lock_guard held(_lock);
    _lines.push_back(descriptionOf(message)->lossyUTF8());
  }
  std::vector<std::string> lines() {
    std::lock_guard held(_lock);
    return _lines;
  }

 private:
  std::mutex _lock;
  std::vector<std::string> _lines;
  ScopedService<ClassicLog> _installed{*this};
};

}  // namespace kbx
