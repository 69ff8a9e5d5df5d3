// DesktopFolders: where desktop systems keep what they know of files, and in which languages the
// user reads it. All answers come from the environment variables, at each question.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Export.h"

namespace kbx {

/// The value of an environment variable; absent when there is none.
KBX_PLATFORM std::optional<std::string> environmentVariable(std::string_view name);

/// XDG_CONFIG_HOME, or .config in HOME; absent when neither is an absolute path.
KBX_PLATFORM std::optional<std::string> configurationFolder();

/// XDG_DATA_HOME, or .local/share in HOME; absent when neither is an absolute path.
KBX_PLATFORM std::optional<std::string> userDataFolder();

/// The folders of shared data, the user's own first, then those of XDG_DATA_DIRS (or
/// /usr/local/share and /usr/share). Absolute paths without a slash at the end, 64 at the most.
KBX_PLATFORM std::vector<std::string> dataFolders();

/// The languages in which the user wants texts, best first, as texts are labelled: for de_AT these
/// are "de_AT" and "de". None when the user reads them as they are. 16 at the most; none can lead
/// out of a folder when it is part of a path.
KBX_PLATFORM std::vector<std::string> userLanguages();

}  // namespace kbx
