// AutomaticTermination: whether the system may end a process that looks idle.
#pragma once

#include "platform/Export.h"
#include "platform/objects/NSString.h"
#include "platform/system/Service.h"

namespace kbx {

/// Takes note of what a process allows. Called from any thread.
///
/// Linux ends no process for being idle, so its answerer only keeps the state.
class KBX_PLATFORM AutomaticTermination {
 public:
  virtual ~AutomaticTermination();
  virtual bool isSupportEnabled() = 0;
  virtual void setSupportEnabled(bool enabled) = 0;
  /// Forbids termination until enable() was called as often.
  virtual void disable(NSString* reason) = 0;
  virtual void enable(NSString* reason) = 0;

  KBX_SERVICE_INTERFACE(AutomaticTermination)
};

}  // namespace kbx
