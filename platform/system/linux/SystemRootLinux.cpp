#include <dlfcn.h>

#include <filesystem>
#include <system_error>

#include "platform/system/SystemRoot.h"

namespace kbx {

std::string platformLibraryFolder() {
  static const std::string folder = [] {
    Dl_info library{};
    dladdr(reinterpret_cast<const void*>(&pathBelowSystemRoot), &library);
    std::error_code ignored;
    auto file = std::filesystem::canonical(library.dli_fname ? library.dli_fname : "", ignored);
    return file.parent_path().string();
  }();
  return folder;
}

}  // namespace kbx
