// RecordingUnifiedLog: a unified log that keeps its entries and counts its handles for a test.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/logging/UnifiedLog.h"

namespace kbx {

/// Installed while it lives; its handles may not outlive it. Safe from any thread.
class RecordingUnifiedLog final : public UnifiedLog {
 public:
  struct Entry {
    std::string subsystem;
    std::string category;
    std::string text;
    friend bool operator==(const Entry&, const Entry&) = default;
  };

  bool isAvailable() override { return isThere; }
  Ref<OSLog> create(NSString* subsystem, NSString* category) override {
    std::lock_guard held(_lock);
    _created.push_back(category->lossyUTF8());
    return Ref<OSLog>::adopt(new Handle(*this, subsystem->lossyUTF8(), category->lossyUTF8()));
  }

  std::vector<Entry> entries() {
    std::lock_guard held(_lock);
    return _entries;
  }
  /// The texts of the entries alone.
  std::vector<std::string> texts() {
    std::vector<std::string> result;
    for (const Entry& entry : entries()) result.push_back(entry.text);
    return result;
  }
  /// The categories of all handles ever made, in order.
  std::vector<std::string> created() {
    std::lock_guard held(_lock);
    return _created;
  }
  /// The categories of the handles that were given back, in order.
  std::vector<std::string> released() {
    std::lock_guard held(_lock);
    return _released;
  }

  bool isThere = true;

 private:
  class Handle final : public OSLog {
   public:
    Handle(RecordingUnifiedLog& log, std::string subsystem, std::string category)
        : _log(log), _subsystem(std::move(subsystem)), _category(std::move(category)) {}
    ~Handle() override {
      std::lock_guard held(_log._lock);
      _log._released.push_back(_category);
    }
    void writeError(const char* text) override {
      std::lock_guard held(_log._lock);
      _log._entries.push_back({_subsystem, _category, text});
    }

   private:
    RecordingUnifiedLog& _log;
    const std::string _subsystem;
    const std::string _category;
  };

  std::mutex _lock;
  std::vector<Entry> _entries;
  std::vector<std::string> _created;
  std::vector<std::string> _released;
  ScopedService<UnifiedLog> _installed{*this};
};

}  // namespace kbx
