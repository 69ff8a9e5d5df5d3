#include "host/workers/Copies.h"

#include <filesystem>
#include <system_error>

#include "host/import/FileCopy.h"
#include "host/import/Staging.h"
#include "host/import/StandardInput.h"
#include "platform/files/ReadableFile.h"

namespace kbx {

std::string Copies::newFolder() {
  std::string path = _folder.path() + "/" + std::to_string(_count++);
  std::error_code ignored;  // then no file can be made in it either
  std::filesystem::create_directory(path, ignored);
  return path;
}

std::string Copies::ofStandardInput(Ref<NSError>* error) {
  const StandardInput copy(
      _folder.failure() ? ScratchFolder("", _folder.failure()) : ScratchFolder(newFolder()), error);
  return copy.url() ? copy.url()->fileSystemRepresentation() : "";
}

std::string Copies::ofFile(NSURL* file, Ref<NSError>* error) {
  const ReadableFile readable(file, error);
  if (!readable.isOpen()) return {};
  const std::string& path = file->fileSystemRepresentation();
  std::string copy = newFolder() + path.substr(folderOf(file).size());
  return copyToNewFile(readable.descriptor(), copy, error) ? copy : "";
}

void Copies::letGo(const std::string& path) {
  std::error_code ignored;
  if (!path.empty()) std::filesystem::remove_all(path.substr(0, path.rfind('/')), ignored);
}

}  // namespace kbx
