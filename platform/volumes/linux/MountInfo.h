// The kernel's list of mounts and the labels of block devices, as Linux keeps them in files.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/volumes/MountTable.h"

namespace kbx {

/// The mounts that /proc/self/mountinfo tells of; lines of another form are left out.
KBX_PLATFORM std::vector<Mount> mountsInMountInfo(std::string_view text);

/// The name of the link in the folder that leads to the same file as `source`, its escapes
/// ("\x20") decoded; "" when there is none among the first 1024.
///
/// folder  such as /dev/disk/by-label
KBX_PLATFORM std::string labelInFolder(const std::string& folder, const std::string& source);

}  // namespace kbx
