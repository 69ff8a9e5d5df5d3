#include "platform/logging/UnifiedLog.h"

#include "platform/objects/NSClass.h"

namespace kbx {

KBX_CLASS(OSLog)

OSLog::~OSLog() = default;

UnifiedLog::~UnifiedLog() = default;

}  // namespace kbx
