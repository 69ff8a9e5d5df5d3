// FakeFolders: folders as they are on the disk, but for what a test makes of them.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "host/index/FolderReader.h"

namespace kbx {

/// Installed while it lives. For one thread.
class FakeFolders final : public FolderReader {
 public:
  /// The folder cannot be read, for this reason (an `errno` value); 0 makes it readable again.
  void fail(const std::string& folder, int number) { _failures[folder] = number; }
  /// The folder lies on another device than it does.
  void mount(const std::string& folder, std::uint64_t device) { _devices[folder] = device; }
  void unmountAll() { _devices.clear(); }

  int read(const std::string& folder, const std::function<bool(std::string_view)>& wantsFile,
           std::vector<FolderEntry>* entries) override {
    ++readings;
    if (const int failure = failureOf(folder)) return failure;
    const int failure = _system.read(folder, wantsFile, entries);
    for (FolderEntry& entry : *entries) replaceDevice(folder, entry.state);
    return failure;
  }
  int stateOfFile(const std::string& path, FolderEntry* entry) override {
    if (beforeState) beforeState(path);
    if (const int failure = failureOf(path)) return failure;
    const int failure = _system.stateOfFile(path, entry);
    replaceDevice(path.substr(0, path.rfind('/')), entry->state);
    return failure;
  }
  int deviceOfFolder(const std::string& folder, std::uint64_t* device) override {
    FileState state;
    const int failure = _system.deviceOfFolder(folder, &state.device);
    replaceDevice(folder, state);
    *device = state.device;
    return failure;
  }

  int readings = 0;
  std::function<void(const std::string& path)> beforeState;  // may change files

 private:
  int failureOf(const std::string& path) const {
    const auto found = _failures.find(path);
    return found == _failures.end() ? 0 : found->second;
  }
  void replaceDevice(const std::string& folder, FileState& state) const {
    if (const auto found = _devices.find(folder); found != _devices.end())
      state.device = found->second;
  }

  FolderReader& _system = FolderReader::current();
  std::map<std::string, int> _failures;
  std::map<std::string, std::uint64_t> _devices;
  ScopedService<FolderReader> _installed{*this};
};

}  // namespace kbx
