// The user's name and home folder, under the names that macOS gives them.
#pragma once

#include "platform/objects/NSString.h"

namespace kbx {

/// The login name of the user. Never absent. Any thread.
KBX_PLATFORM Ref<NSString> NSUserName();

/// The path of the user's home folder, or of what stands for it in a sandbox. Never absent. Any
/// thread.
KBX_PLATFORM Ref<NSString> NSHomeDirectory();

}  // namespace kbx
