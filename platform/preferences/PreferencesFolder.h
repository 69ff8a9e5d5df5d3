// PreferencesFolder: where the files of preference domains lie, and how they are called.
#pragma once

#include <optional>
#include <string>

#include "platform/objects/NSString.h"

namespace kbx {

/// "ferncase/preferences" in the user's configuration folder: XDG_CONFIG_HOME, or .config in HOME.
/// Absent when the environment names neither by an absolute path.
KBX_PLATFORM std::optional<std::string> preferencesFolder();

/// The name of a domain's file: the domain and ".plist". What could lead out of the folder or hide
/// the file (a slash, a leading dot, control characters) is written as "%2F"; the percent sign too.
/// Absent for an absent or empty domain and for one that has no UTF-8 form.
KBX_PLATFORM std::optional<std::string> preferencesFileName(NSString* domain);

}  // namespace kbx
