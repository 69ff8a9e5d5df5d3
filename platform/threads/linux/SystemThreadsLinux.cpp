#include <unistd.h>

#include "platform/threads/SystemThreads.h"

namespace kbx {

bool isCallingThreadMain() { return gettid() == getpid(); }

}  // namespace kbx
