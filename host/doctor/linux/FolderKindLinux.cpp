#include <linux/magic.h>
#include <sys/vfs.h>

#include "host/doctor/Examinations.h"

namespace kbx {

bool isInMemory(const std::string& folder) {
  struct statfs status;
  return ::statfs(folder.c_str(), &status) == 0 &&
         (status.f_type == TMPFS_MAGIC || status.f_type == RAMFS_MAGIC);
}

}  // namespace kbx
