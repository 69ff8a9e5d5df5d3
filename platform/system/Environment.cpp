#include "platform/system/Environment.h"

namespace kbx {

Environment::~Environment() = default;

}  // namespace kbx
