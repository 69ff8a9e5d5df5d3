#include "host/import/StandardInput.h"

#include <string>

#include "host/console/Interruption.h"
#include "host/import/FileCopy.h"
#include "platform/files/FileErrors.h"

namespace kbx {
namespace {

constexpr int kStandardInput = 0;

}  // namespace

void StandardInput::copyTo(const ScratchFolder& folder, Ref<NSError>* error) {
  const std::string path = folder.path() + "/standard-input.eml";
  auto url = NSURL::fileURLWithFileSystemRepresentation(path, false);
  if (folder.failure()) {
    if (error) *error = fileError(url, FileAction::Writing, folder.failure());
    return;
  }
  const Interruption::Allowed whileWaiting;
  if (copyToNewFile(kStandardInput, path, error)) _url = url;
}

}  // namespace kbx
