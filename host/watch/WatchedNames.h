// WatchedNames: which files and folders are worth following.
#pragma once

#include <string>
#include <string_view>

namespace kbx {

/// Whether a file of this name is somebody's unfinished work: hidden ones (which mail programs,
/// editors and importers write to and then rename), "…~", "….part", "….crdownload".
bool isTemporaryName(std::string_view name);

/// Whether a file is a message, as MessageNames knows them. What the path names need not be there.
bool isWatchedFile(const std::string& path);

/// Whether there may be messages in a folder: it is not hidden, or a folder of a Maildir.
bool isWatchedFolder(const std::string& path);

/// Whether a folder is the one in which a Maildir keeps what is being delivered.
bool isDeliveryFolder(const std::string& path);

}  // namespace kbx
