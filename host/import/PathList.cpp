#include "host/import/PathList.h"

#include <algorithm>
#include <iterator>

#include "host/import/InputFiles.h"
#include "host/import/StandardInput.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSData.h"

namespace kbx {
namespace {

bool addPathsIn(NSURL* file, char separator, std::vector<std::string>& paths, Ref<NSError>* error) {
  auto list = NSData::dataWithContentsOfURL(file, NSDataReadingNone, error);
  if (!list) return false;
  std::ranges::move(pathsIn(list->view(), separator), std::back_inserter(paths));
  return true;
}

}  // namespace

std::vector<std::string> pathsIn(std::string_view list, char separator) {
  std::vector<std::string> paths;
  while (!list.empty()) {
    const std::string_view path = list.substr(0, list.find(separator));
    list.remove_prefix(std::min(path.size() + 1, list.size()));
    if (path == kStandardInputName)
      paths.emplace_back("./-");
    else if (!path.empty())
      paths.emplace_back(path);
  }
  return paths;
}

bool addPathsFrom(const std::string& file, char separator, std::vector<std::string>& paths,
                  Ref<NSError>* error) {
  if (file == kStandardInputName) {
    const StandardInput copy(error);
    return copy.url() && addPathsIn(copy.url(), separator, paths, error);
  }
  auto url = NSURL::fileURLWithFileSystemRepresentation(file, false);
  return addPathsIn(url, separator, paths, error);
}

}  // namespace kbx
