#include "platform/system/ResourceLimits.h"

namespace kbx {

ResourceLimits::~ResourceLimits() = default;

}  // namespace kbx
