#include "host/workers/SystemFiles.h"

#include <link.h>

#include <set>
#include <string_view>

#include "platform/desktop/DesktopFolders.h"

namespace kbx {
namespace {

/// The folders of the libraries that are loaded: where those lie that they load in their turn.
int addFolder(dl_phdr_info* library, std::size_t, void* folders) {
  const std::string_view path = library->dlpi_name;
  if (path.starts_with('/'))
    static_cast<std::set<std::string>*>(folders)->emplace(path.substr(0, path.rfind('/')));
  return 0;
}

/// The folders in the search path of the dynamic linker.
void addSearchPath(std::set<std::string>& folders) {
  const std::string path = environmentVariable("LD_LIBRARY_PATH").value_or("");
  for (std::size_t start = 0; start < path.size();) {
    const std::size_t end = std::min(path.find(':', start), path.size());
    if (end > start) folders.insert(path.substr(start, end - start));
    start = end + 1;
  }
}

}  // namespace

std::vector<std::string> systemFiles() {
  std::vector<std::string> files = {"/usr",
                                    "/lib",
                                    "/lib64",
                                    "/lib32",
                                    "/etc/ld.so.cache",
                                    "/etc/localtime",
                                    "/etc/timezone",
                                    "/etc/xml",
                                    "/etc/nsswitch.conf",
                                    "/etc/passwd",
                                    "/etc/group",
                                    "/proc/self",
                                    "/proc/cpuinfo",
                                    "/proc/meminfo",
                                    "/proc/filesystems",
                                    "/sys/devices/system/cpu",
                                    "/dev/null",
                                    "/dev/zero",
                                    "/dev/urandom",
                                    "/dev/random"};
  std::set<std::string> folders;
  ::dl_iterate_phdr(addFolder, &folders);
  addSearchPath(folders);
  files.insert(files.end(), folders.begin(), folders.end());
  return files;
}

}  // namespace kbx
