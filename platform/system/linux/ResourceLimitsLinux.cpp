#include <sys/resource.h>

#include "platform/system/ResourceLimits.h"

namespace kbx {
namespace {

class LinuxResourceLimits final : public ResourceLimits {
 public:
  std::optional<ResourceLimit> openFiles() override {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return std::nullopt;
    return ResourceLimit{limit.rlim_cur, limit.rlim_max};
  }
  bool setOpenFiles(ResourceLimit limit) override {
    const rlimit wanted{limit.soft, limit.hard};
    return setrlimit(RLIMIT_NOFILE, &wanted) == 0;
  }
};

}  // namespace

KBX_SERVICE(ResourceLimits, LinuxResourceLimits)

}  // namespace kbx
