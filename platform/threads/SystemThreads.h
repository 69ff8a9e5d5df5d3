// What the system says about its threads.
#pragma once

namespace kbx {

/// Whether the calling thread is the one that the process began with.
bool isCallingThreadMain();

}  // namespace kbx
