// MountTable: which file systems are mounted, and when that changes.
#pragma once

#include <map>
#include <string>

namespace kbx {

/// The mount table of the process. Belongs to one thread.
class MountTable {
 public:
  MountTable();
  ~MountTable();
  MountTable(const MountTable&) = delete;
  MountTable& operator=(const MountTable&) = delete;

  /// Has POLLPRI when the table has changed, once for each change; -1 when there is no table.
  int descriptor() const { return _descriptor; }
  /// Whether it has changed since this, or a poll, was asked last.
  bool hasChanged();
  /// The devices that are mounted ("8:1"), by the number that name_to_handle_at() answers for what
  /// is on them. Empty when the table cannot be read.
  static std::map<int, std::string> read();

 private:
  int _descriptor;
};

}  // namespace kbx
