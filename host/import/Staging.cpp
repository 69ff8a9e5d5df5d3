#include "host/import/Staging.h"

#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "host/console/FerncaseErrors.h"
#include "platform/files/FileNames.h"

namespace kbx {
namespace {

/// Other processes and workers stage at the same time, and memory is wanted for more than files.
constexpr std::uint64_t kShareOfFreeMemory = 4;

}  // namespace

Staging::Staging(const ScratchFolder& memory, const ScratchFolder& disk)
    : _memory(memory.path(), memory.failure()), _disk(std::in_place, disk.path(), disk.failure()) {}

ScratchFolder& Staging::folderForSize(std::uint64_t size) {
  if (fitsIntoMemory(size)) return _memory;
  if (!_disk) _disk.emplace(ScratchFolder::Place::Disk);
  return _disk->failure() == 0 ? *_disk : _memory;
}

bool Staging::fitsIntoMemory(std::uint64_t size) const {
  if (_memory.failure()) return false;
  std::error_code unknown;
  const auto space = std::filesystem::space(_memory.path(), unknown);
  return !unknown && size <= space.available / kShareOfFreeMemory;
}

std::string_view folderOf(NSURL* file) {
  const std::string_view path = file->fileSystemRepresentation();
  return path.substr(0, path.rfind('/'));
}

StagedMessage::StagedMessage(ScratchFolder& folder, NSURL* original, NSURL* contents,
                             Ref<NSError>* error)
    : _folder(folder) {
  const std::string& path = original->fileSystemRepresentation();
  const std::string link = folder.path() + path.substr(folderOf(original).size());
  std::error_code failure(folder.failure(), std::generic_category());
  if (!failure)
    std::filesystem::create_symlink(contents->fileSystemRepresentation(), link, failure);
  if (failure) {
    *error = ferncaseError(FerncaseStagingFailedError,
                           "The message can’t be shown to the importer in a private folder: " +
                               failure.message() + ".");
    return;
  }
  _url = NSURL::fileURLWithFileSystemRepresentation(link, false);
  _folderPath = stringWithFileSystemRepresentation(folder.path());
  _originalFolder = stringWithFileSystemRepresentation(folderOf(original));
}

StagedMessage::~StagedMessage() {
  if (_url) _folder.clear();
}

void restorePaths(NSMutableDictionary* attributes, NSString* folder, NSString* originalFolder) {
  std::vector<std::pair<Ref<NSObject>, Ref<NSString>>> restored;
  for (const auto& [key, value] : *attributes) {
    auto* text = cast<NSString>(value);
    if (text && text->hasPrefix(folder))
      restored.emplace_back(
          key, originalFolder->stringByAppendingString(text->substringFromIndex(folder->length())));
  }
  for (const auto& [key, text] : restored) attributes->setObjectForKey(text, key);
}

}  // namespace kbx
