// Paths: how the paths of files and folders lie to each other. Absolute, in bytes, without slashes
// at their ends.
#pragma once

#include <string>
#include <string_view>

namespace kbx {

/// Whether the path is that of something in the folder, however deep.
inline bool isBelow(std::string_view path, std::string_view folder) {
  if (folder == "/") return path.size() > 1;
  return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

/// The path of an entry.
inline std::string entryOf(std::string_view folder, std::string_view name) {
  std::string path(folder);
  if (path != "/") path += '/';
  return path.append(name);
}

}  // namespace kbx
