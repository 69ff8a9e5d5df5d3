#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "host/ScratchFolder.h"

namespace kbx {

ScratchFolder::ScratchFolder() {
  std::error_code unusable;
  auto parent = std::filesystem::temp_directory_path(unusable);
  std::string path = (unusable ? std::filesystem::path("/tmp") : parent) / "ferncase-XXXXXX";
  if (::mkdtemp(path.data()))
    _path = std::move(path);
  else
    _failure = errno;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  if (!_path.empty()) std::filesystem::remove_all(_path, ignored);
}

}  // namespace kbx
