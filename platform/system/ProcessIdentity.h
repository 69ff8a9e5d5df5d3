// ProcessIdentity: who this process is among the others.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Export.h"
#include "platform/system/Service.h"

namespace kbx {

/// The names and numbers of the calling process. Called from any thread.
class KBX_PLATFORM ProcessIdentity {
 public:
  virtual ~ProcessIdentity();
  /// The file name of the executable, whole, as UTF-8 bytes.
  virtual std::string processName() = 0;
  virtual std::int32_t processIdentifier() = 0;
  /// The number of the user who started the process.
  virtual std::uint32_t realUserIdentifier() = 0;

  KBX_SERVICE_INTERFACE(ProcessIdentity)
};

}  // namespace kbx
