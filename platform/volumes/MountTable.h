// MountTable: which file systems are mounted where.
#pragma once

#include <string>
#include <vector>

#include "platform/Export.h"
#include "platform/system/Service.h"

namespace kbx {

struct Mount {
  std::string mountPoint;  // an absolute path in the file system's form, without links
  std::string device;      // "8:1"; the same for every mount of one file system
  std::string source;      // what is mounted: "/dev/sda1", "tmpfs"
};

/// What the system says of its volumes. Called from any thread.
class KBX_PLATFORM MountTable {
 public:
  virtual ~MountTable();
  /// All mounts in the order in which they were made; none when the system does not say.
  virtual std::vector<Mount> mounts() = 0;
  /// The name that the volume carries itself; "" for one without.
  virtual std::string labelOf(const Mount& mount) = 0;

  KBX_SERVICE_INTERFACE(MountTable)
};

}  // namespace kbx
