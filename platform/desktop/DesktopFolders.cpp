#include "platform/desktop/DesktopFolders.h"

#include <algorithm>

#include "platform/system/Environment.h"

namespace kbx {
namespace {

constexpr std::size_t kMostFolders = 64;
constexpr std::size_t kMostLanguages = 16;

/// An absolute path, slashes at its end cut off.
std::optional<std::string> absolutePath(std::optional<std::string> path) {
  if (!path || !path->starts_with('/')) return std::nullopt;
  while (path->size() > 1 && path->ends_with('/')) path->pop_back();
  return path;
}

std::optional<std::string> userFolder(std::string_view variable, std::string_view belowHome) {
  if (auto folder = absolutePath(environmentVariable(variable))) return folder;
  auto home = absolutePath(environmentVariable("HOME"));
  if (home) home->append(*home == "/" ? belowHome.substr(1) : belowHome);
  return home;
}

/// Calls `visit` with each part between the colons while it answers true.
template <class Visit>
void forEachPart(std::string_view list, Visit visit) {
  for (std::size_t at = 0; at <= list.size();) {
    const std::size_t end = std::min(list.find(':', at), list.size());
    if (end > at && !visit(list.substr(at, end - at))) return;
    at = end + 1;
  }
}

bool isNameOfLocale(std::string_view text) {
  return std::ranges::all_of(text, [](unsigned char c) {
    return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z') || c == '_' ||
           c == '-' || c == '@';
  });
}

/// "sr_RS.UTF-8@latin" is read as "sr_RS@latin", "sr_RS", "sr@latin" and "sr".
void appendForms(std::vector<std::string>& languages, std::string_view locale) {
  const std::size_t mark = std::min(locale.find('@'), locale.size());
  const std::string modifier(locale.substr(mark));
  std::string_view place = locale.substr(0, mark);
  place = place.substr(0, place.find('.'));
  const std::string_view language = place.substr(0, place.find('_'));
  if (language.empty() || !isNameOfLocale(place) || !isNameOfLocale(modifier)) return;
  for (const std::string_view form : {place, language})
    for (const std::string& ending : {modifier, std::string()}) {
      const std::string name = std::string(form) + ending;
      if (languages.size() < kMostLanguages &&
          std::ranges::find(languages, name) == languages.end())
        languages.push_back(name);
    }
}

std::string messagesLocale() {
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
    if (auto value = environmentVariable(variable); value && !value->empty()) return *value;
  return "C";
}

}  // namespace

std::optional<std::string> environmentVariable(std::string_view name) {
  for (const auto& entry : Environment::current().variables())
    if (entry.size() > name.size() && entry[name.size()] == '=' && entry.starts_with(name))
      return entry.substr(name.size() + 1);
  return std::nullopt;
}

std::optional<std::string> configurationFolder() {
  return userFolder("XDG_CONFIG_HOME", "/.config");
}

std::optional<std::string> userDataFolder() { return userFolder("XDG_DATA_HOME", "/.local/share"); }

std::vector<std::string> dataFolders() {
  std::vector<std::string> folders;
  if (auto own = userDataFolder()) folders.push_back(*own);
  auto list = environmentVariable("XDG_DATA_DIRS");
  if (!list || list->empty()) list = "/usr/local/share:/usr/share";
  forEachPart(*list, [&folders](std::string_view part) {
    if (auto folder = absolutePath(std::string(part))) folders.push_back(*folder);
    return folders.size() < kMostFolders;
  });
  return folders;
}

std::vector<std::string> userLanguages() {
  const std::string locale = messagesLocale();
  std::vector<std::string> languages;
  if (locale == "C" || locale == "POSIX" || locale.starts_with("C.")) return languages;
  // The list of preferred languages goes before the locale, where there is a locale at all.
  const std::string preferred = environmentVariable("LANGUAGE").value_or("");
  forEachPart(preferred, [&languages](std::string_view part) {
    appendForms(languages, part);
    return languages.size() < kMostLanguages;
  });
  appendForms(languages, locale);
  return languages;
}

}  // namespace kbx
