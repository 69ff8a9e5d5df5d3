// WriterLock: lets one process at a time write a store.
#pragma once

#include <memory>
#include <string>

#include "platform/objects/NSError.h"

namespace kbx {

/// Holds the right to write while it lives. It ends with the process, however that ends, and
/// children do not inherit it.
class WriterLock {
 public:
  virtual ~WriterLock() = default;

  /// Locks the file "STORE-lock" beside the store, which stays. Absent with StoreBusyError, whose
  /// description names the process, while another process or another holder in this one has it.
  static std::unique_ptr<WriterLock> take(const std::string& storePath, Ref<NSError>* error);
};

}  // namespace kbx
