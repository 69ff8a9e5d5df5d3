// LocalizedNames: what files are called when they are shown to the user.
#pragma once

#include <string>

#include "platform/objects/NSString.h"

namespace kbx {

/// The name to show for an item that exists. Never absent.
///
/// In this order: the volume's name for the root; the name inside a ".desktop" file in a folder of
/// applications, and nowhere else, because a file must not choose what it looks like; the
/// translated name of a folder that the desktop made for the user; the name of the file.
KBX_PLATFORM Ref<NSString> localizedName(const std::string& path);

}  // namespace kbx
