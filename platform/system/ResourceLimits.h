// ResourceLimits: how much of a resource the process may use.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/Export.h"
#include "platform/system/Service.h"

namespace kbx {

/// The limit in force, and the one up to which a process may raise it by itself.
struct ResourceLimit {
  std::uint64_t soft = 0;
  std::uint64_t hard = 0;

  friend bool operator==(const ResourceLimit&, const ResourceLimit&) = default;
};

/// The limits of this process. Called from any thread.
class KBX_PLATFORM ResourceLimits {
 public:
  virtual ~ResourceLimits();
  /// How many files may be open at once; absent when the system does not say.
  virtual std::optional<ResourceLimit> openFiles() = 0;
  /// False, and no change, when the system refuses.
  virtual bool setOpenFiles(ResourceLimit limit) = 0;

  KBX_SERVICE_INTERFACE(ResourceLimits)
};

}  // namespace kbx
