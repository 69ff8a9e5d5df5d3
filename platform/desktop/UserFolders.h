// UserFolders: the folders that a desktop makes for its user, such as the one for downloads.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Export.h"

namespace kbx {

/// The paths of the folders that a "user-dirs.dirs" file names, without a slash at the end.
///
/// text  its lines are XDG_DOWNLOAD_DIR="$HOME/Downloads" or name an absolute path; others, and
///       those that name the home folder itself, count for nothing
/// home  what stands for $HOME
KBX_PLATFORM std::vector<std::string> pathsInUserFolders(std::string_view text,
                                                         std::string_view home);

/// The name of such a folder in the user's language, as UTF-8 from somebody's file.
///
/// Asks the user's "user-dirs.dirs" whether the path is one of them, and the desktop's catalogs of
/// messages for the name. Absent for any other folder and for a name that nobody has translated.
KBX_PLATFORM std::optional<std::string> localizedNameOfUserFolder(const std::string& path);

}  // namespace kbx
