#include "KBXLog.h"

namespace kbx::detail {

Ref<KBXLogger> LogSwitch::enabledLogger(NSString* area) {
  // The number first: should another logger be set meanwhile, what is remembered is out of date at
  // once instead of wrong.
  const std::uint64_t number = sharedLoggerNumber.load(std::memory_order_relaxed);
  Ref<KBXLogger> logger = KBXLogger::sharedLogger();
  if (logger->isEnabledForArea(area)) return logger;
  _offFor.store(number, std::memory_order_relaxed);
  return nullptr;
}

}  // namespace kbx::detail
