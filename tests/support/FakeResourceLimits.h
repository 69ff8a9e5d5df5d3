// FakeResourceLimits: limits that a test sets, and the requests to change them.
#pragma once

#include <vector>

#include "platform/system/ResourceLimits.h"

namespace kbx {

/// Install it with ScopedService<ResourceLimits>.
class FakeResourceLimits final : public ResourceLimits {
 public:
  std::optional<ResourceLimit> openFiles() override { return answer; }
  bool setOpenFiles(ResourceLimit limit) override {
    requests.push_back(limit);
    return accepts;
  }

  std::optional<ResourceLimit> answer;  // absent: the query fails
  bool accepts = true;
  std::vector<ResourceLimit> requests;
};

}  // namespace kbx
