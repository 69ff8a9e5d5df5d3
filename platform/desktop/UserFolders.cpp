#include "platform/desktop/UserFolders.h"

#include <algorithm>

#include "platform/desktop/DesktopFolders.h"
#include "platform/desktop/MessageCatalog.h"
#include "platform/desktop/TextLines.h"
#include "platform/files/BoundedFile.h"

namespace kbx {
namespace {

constexpr std::size_t kLargestList = std::size_t{64} << 10;
constexpr std::size_t kLargestCatalog = std::size_t{1} << 20;

void cutSlashes(std::string& path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
}

/// The text between the quotation marks; "" when there are none.
std::string unquoted(std::string_view value) {
  std::string text;
  if (value.size() < 2 || !value.starts_with('"') || !value.ends_with('"')) return text;
  value = value.substr(1, value.size() - 2);
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] == '\\' && i + 1 < value.size()) ++i;
    text += value[i];
  }
  return text;
}

bool isUserFolder(const std::string& path) {
  const auto folder = configurationFolder();
  const auto list =
      folder ? contentsOfFile(*folder + "/user-dirs.dirs", kLargestList) : std::nullopt;
  if (!list) return false;
  const auto paths = pathsInUserFolders(*list, environmentVariable("HOME").value_or(""));
  return std::ranges::find(paths, path) != paths.end();
}

std::optional<std::string> translation(std::string_view name) {
  const auto languages = userLanguages();
  const auto folders = languages.empty() ? std::vector<std::string>() : dataFolders();
  for (const auto& language : languages)
    for (const auto& folder : folders) {
      const auto catalog = contentsOfFile(
          folder + "/locale/" + language + "/LC_MESSAGES/xdg-user-dirs.mo", kLargestCatalog);
      const auto text = catalog ? translationInCatalog(*catalog, name) : std::nullopt;
      if (text) return std::string(*text);
    }
  return std::nullopt;
}

}  // namespace

std::vector<std::string> pathsInUserFolders(std::string_view text, std::string_view home) {
  std::string own(home);
  cutSlashes(own);
  std::vector<std::string> paths;
  forEachLine(text, [&](std::string_view line) {
    const std::size_t sign = line.find('=');
    if (sign == std::string_view::npos || !line.starts_with("XDG_")) return;
    if (!trimmed(line.substr(0, sign)).ends_with("_DIR")) return;
    std::string path = unquoted(trimmed(line.substr(sign + 1)));
    if (path.starts_with("$HOME/")) path.replace(0, 5, own);
    cutSlashes(path);
    if (path.starts_with('/') && path != own) paths.push_back(std::move(path));
  });
  return paths;
}

std::optional<std::string> localizedNameOfUserFolder(const std::string& path) {
  if (!isUserFolder(path)) return std::nullopt;
  return translation(std::string_view(path).substr(path.rfind('/') + 1));
}

}  // namespace kbx
