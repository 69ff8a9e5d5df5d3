// Volumes: on which volume a file lies.
#pragma once

#include <optional>
#include <string>

#include "platform/objects/NSString.h"
#include "platform/volumes/MountTable.h"

namespace kbx {

/// The mount that an item lies on: the deepest one around its path, and of several on one place the
/// last, which hides the others. Links on the way are followed, one at the end is not.
///
/// path  absolute, in the file system's form
///
/// Absent when the mount table has none.
KBX_PLATFORM std::optional<Mount> mountHolding(const std::string& path);

/// Whether something is mounted at the path itself.
KBX_PLATFORM bool isMountPoint(const std::string& path);

/// The volume's label, else the name of its mount point; absent for a root without a label.
KBX_PLATFORM Ref<NSString> nameOfVolume(const Mount& mount);

}  // namespace kbx
