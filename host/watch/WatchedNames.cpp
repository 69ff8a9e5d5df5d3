#include "host/watch/WatchedNames.h"

#include <algorithm>
#include <array>

#include "host/import/MessageNames.h"

namespace kbx {
namespace {

std::string_view lastOf(const std::string& path) {
  return std::string_view(path).substr(path.rfind('/') + 1);
}

}  // namespace

bool isTemporaryName(std::string_view name) {
  constexpr std::array<std::string_view, 3> kEndings{"~", ".part", ".crdownload"};
  return name.starts_with('.') || std::ranges::any_of(kEndings, [&](std::string_view ending) {
           return name.ends_with(ending);
         });
}

bool isWatchedFile(const std::string& path) {
  return isMessageName(lastOf(path)) || isMaildirMessage(path);
}

bool isWatchedFolder(const std::string& path) {
  return !lastOf(path).starts_with('.') || isMaildirFolder(path + "/cur");
}

bool isDeliveryFolder(const std::string& path) {
  if (lastOf(path) != "tmp") return false;
  const std::string around = path.substr(0, path.size() - 3);
  return isMaildirFolder(around + "cur") || isMaildirFolder(around + "new");
}

}  // namespace kbx
