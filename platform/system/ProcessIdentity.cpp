#include "platform/system/ProcessIdentity.h"

namespace kbx {

ProcessIdentity::~ProcessIdentity() = default;

}  // namespace kbx
