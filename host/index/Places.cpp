#include "host/index/Places.h"

#include <cerrno>
#include <filesystem>

#include "host/index/FolderReader.h"
#include "platform/files/FileErrors.h"
#include "platform/files/NSURL.h"

namespace kbx {
namespace {

/// The path that the store has for what an operand names: absolute, without links on the way.
/// Otherwise an error number.
int placeOf(const std::string& operand, std::string* place) {
  FolderEntry entry;
  if (const int failure = FolderReader::current().stateOfFile(operand, &entry)) return failure;
  const std::filesystem::path path(operand);
  const auto folder = entry.isFolder ? path : path.has_parent_path() ? path.parent_path() : ".";
  std::error_code failure;
  const auto found = std::filesystem::canonical(folder, failure);
  *place = (entry.isFolder ? found : found / path.filename()).string();
  return failure.value();
}

}  // namespace

std::vector<std::string> placesOf(const std::vector<std::string>& operands, Console& console) {
  std::vector<std::string> places;
  for (const std::string& operand : operands) {
    std::string place;
    const int failure = operand.empty() ? ENOENT : placeOf(operand, &place);
    if (failure) {
      auto url = NSURL::fileURLWithFileSystemRepresentation(operand.empty() ? "." : operand, true);
      auto error = fileError(url, FileAction::Reading, failure);
      console.diagnostics.failure(operand, error->localizedDescription());
    } else {
      places.push_back(std::move(place));
    }
  }
  return places;
}

}  // namespace kbx
