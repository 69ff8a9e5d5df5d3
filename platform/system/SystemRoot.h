// The system root: the folder that stands for "/" where a system's own bundles are looked up.
#pragma once

#include <string>
#include <string_view>

#include "platform/Export.h"

namespace kbx {

/// Where the file of a path really lies: below the system root for what begins with "/System/" or
/// "/Library/", the path itself for anything else. Any thread.
///
/// The system root is the folder that holds the platform library, or the one that the environment
/// variable KBX_SYSTEM_ROOT names when it is neither absent nor empty. Nothing is looked up in the
/// real "/System", which other systems own.
KBX_PLATFORM std::string pathBelowSystemRoot(std::string_view path);

/// The absolute path of the folder that the platform library was loaded from, links followed.
std::string platformLibraryFolder();

}  // namespace kbx
