// TemporaryFolder: a fresh folder for a test's files, gone with the test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/files/NSURL.h"

namespace kbx {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "ferncase-XXXXXX").string();
    if (!::mkdtemp(name.data())) throw std::runtime_error("no temporary folder can be made");
    _path = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(_path, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return _path; }
  std::filesystem::path operator/(std::string_view name) const { return _path / name; }
  Ref<NSURL> url() const { return urlOf(_path); }
  Ref<NSURL> url(std::string_view name) const { return urlOf(_path / name); }

  /// Writes a file in the folder and answers its location.
  Ref<NSURL> write(std::string_view name, std::string_view bytes) const {
    std::ofstream(_path / name, std::ios::binary) << bytes;
    return url(name);
  }
  std::string read(std::string_view name) const {
    std::ifstream file(_path / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  /// How many entries the folder has.
  std::size_t count() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(_path), {}));
  }

 private:
  static Ref<NSURL> urlOf(const std::filesystem::path& path) {
    return NSURL::fileURLWithFileSystemRepresentation(path.string(), false);
  }

  std::filesystem::path _path;
};

}  // namespace kbx
