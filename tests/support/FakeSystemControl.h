// FakeSystemControl: kernel values and a process list that a test makes up.
#pragma once

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "platform/system/SystemControl.h"

namespace kbx {

/// Install it with ScopedService<SystemControl>.
class FakeSystemControl final : public SystemControl {
 public:
  int valueByName(std::string_view name, void* buffer, std::size_t* length) override {
    auto value = values.find(std::string(name));
    if (value == values.end()) return ENOENT;
    if (buffer && fetchError != 0) return fetchError;
    return answer(value->second, buffer, length);
  }

  int value(std::span<const int> name, void* buffer, std::size_t* length) override {
    if (!buffer) {
      sizeQueries.emplace_back(name.begin(), name.end());
      if (sizeError != 0) return sizeError;
      *length = announcedSize ? announcedSize : records().size();
      return 0;
    }
    ++fetches;
    if (growths > 0) {
      --growths;
      processNames.push_back("another");
    }
    if (fetchError != 0) return fetchError;
    fillWithStaleRecords(buffer, *length);
    return answer(records(), buffer, length);
  }

  std::map<std::string, std::string, std::less<>> values;  // by name, as bytes
  std::vector<std::string> processNames;
  int growths = 0;                // before so many fetches of the list another process starts
  int sizeError = 0;              // what a question for the list's size fails with
  int fetchError = 0;             // what a question for a value or for the list fails with
  std::size_t announcedSize = 0;  // what the list's size is told to be; 0 for the true one

  std::vector<std::vector<int>> sizeQueries;  // the questions for the list's size
  int fetches = 0;                            // how often the list was asked for

 private:
  static kinfo_proc recordOf(std::string_view name) {
    kinfo_proc record{};
    std::memcpy(record.p_comm, name.data(), std::min(name.size(), sizeof record.p_comm - 1));
    return record;
  }
  /// Processes named "stale", for those who read behind the list.
  static void fillWithStaleRecords(void* buffer, std::size_t length) {
    const kinfo_proc record = recordOf("stale");
    for (std::size_t end = sizeof record; end <= length; end += sizeof record)
      std::memcpy(static_cast<char*>(buffer) + end - sizeof record, &record, sizeof record);
  }
  std::string records() const {
    std::string bytes;
    for (const std::string& name : processNames) {
      const kinfo_proc record = recordOf(name);
      bytes.append(reinterpret_cast<const char*>(&record), sizeof record);
    }
    return bytes;
  }
};

}  // namespace kbx
