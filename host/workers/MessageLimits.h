// MessageLimits: what this process may take for one message.
#pragma once

#include <cstdint>
#include <string>

#include "host/workers/ImportSettings.h"

namespace kbx {

/// Sets the system's limits of this process. Whoever exceeds the memory gets none; whoever exceeds
/// the time of the processor is ended by SIGXCPU. No core files are written.
class MessageLimits {
 public:
  /// What the process has in memory now counts for nothing.
  explicit MessageLimits(const ImportLimits& limits);

  /// From now on everything is for this message.
  ///
  /// size  in bytes; 0 when it is not known
  void begin(std::uint64_t size);

 private:
  void limitMemory(std::uint64_t bytes);

  const ImportLimits _limits;
  std::uint64_t _base = 0;     // bytes of memory that are in use without any message
  std::uint64_t _allowed = 0;  // bytes, as set; 0 for no limit
};

}  // namespace kbx
