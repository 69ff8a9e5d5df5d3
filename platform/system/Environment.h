// Environment: the variables that a process was started with.
#pragma once

#include <string>
#include <vector>

#include "platform/Export.h"
#include "platform/system/Service.h"

namespace kbx {

/// Where environment variables come from. Called from any thread.
class KBX_PLATFORM Environment {
 public:
  virtual ~Environment();
  /// Every variable as "NAME=value", in the order in which the process holds them.
  virtual std::vector<std::string> variables() = 0;

  KBX_SERVICE_INTERFACE(Environment)
};

}  // namespace kbx
