// UnifiedLog: the log that sorts its entries by subsystem and category, and its handles.
#pragma once

#include "platform/Export.h"
#include "platform/objects/NSObject.h"
#include "platform/objects/NSString.h"
#include "platform/system/Service.h"

namespace kbx {

/// A handle: what is written to it bears its subsystem and category. Lives until the last
/// reference is released (os_release). Any thread.
class KBX_PLATFORM OSLog : public NSObject {
  KBX_OBJECT(OSLog, NSObject)
 public:
  /// Writes one entry of the error level, whole and public: "%{public}s" with the type
  /// OS_LOG_TYPE_ERROR. (os_log)
  ///
  /// text  UTF-8, required
  virtual void writeError(const char* text) = 0;

 protected:
  OSLog() = default;
  ~OSLog() override;
};

/// Where handles come from. Called from any thread.
class KBX_PLATFORM UnifiedLog {
 public:
  virtual ~UnifiedLog();
  /// Whether the system itself has such a log, so that programs should prefer it to the classic
  /// one. Handles work in either case.
  virtual bool isAvailable() = 0;
  /// A new handle, even where one of the same names exists. Never absent; costly. (os_log_create)
  virtual Ref<OSLog> create(NSString* subsystem, NSString* category) = 0;

  // The system's passes the entries on to the log service of the machine, if there is one.
  KBX_SERVICE_INTERFACE(UnifiedLog)
};

/// A new handle of the log in force. (os_log_create)
inline Ref<OSLog> os_log_create(NSString* subsystem, NSString* category) {
  return UnifiedLog::current().create(subsystem, category);
}

}  // namespace kbx
