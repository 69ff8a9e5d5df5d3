// FakeMountTable: volumes that a test makes up.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/volumes/MountTable.h"

namespace kbx {

/// FakeMountTable volumes{{{"/", "8:1", "/dev/sda1"}}}; installed while it lives.
class FakeMountTable final : public MountTable {
 public:
  explicit FakeMountTable(std::vector<Mount> mounts = {}) : entries(std::move(mounts)) {}

  std::vector<Mount> mounts() override { return entries; }
  std::string labelOf(const Mount& mount) override {
    auto label = labels.find(mount.source);
    return label == labels.end() ? "" : label->second;
  }

  std::vector<Mount> entries;
  std::map<std::string, std::string> labels;  // by what is mounted

 private:
  ScopedService<MountTable> _installed{*this};
};

}  // namespace kbx
