#include "platform/logging/NSLog.h"

#include "platform/logging/StandardErrorLog.h"

namespace kbx {

ClassicLog::~ClassicLog() = default;

KBX_SERVICE(ClassicLog, StandardErrorLog)

}  // namespace kbx
