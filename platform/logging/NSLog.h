// NSLog: the classic system log, and the sink behind it.
#pragma once

#include "platform/Export.h"
#include "platform/system/Service.h"
#include "platform/text/Format.h"

namespace kbx {

/// Where lines of the classic log go. Called from any thread, one whole message at a time.
class KBX_PLATFORM ClassicLog {
 public:
  virtual ~ClassicLog();
  virtual void write(NSString* message) = 0;

  // The system's sink is standard error, with time, process name, process and thread number.
  KBX_SERVICE_INTERFACE(ClassicLog)
};

/// Writes one message to the classic log. (NSLog)
template <class... Arguments>
void NSLog(NSString* format, const Arguments&... arguments) {
  ClassicLog::current().write(stringWithFormat(format, arguments...));
}

}  // namespace kbx
