#include "platform/desktop/DesktopEntry.h"

#include "platform/desktop/TextLines.h"

namespace kbx {
namespace {

/// The language in "Name[de]", "" in "Name"; absent for every other key.
std::optional<std::string_view> languageOfName(std::string_view key) {
  if (!key.starts_with("Name")) return std::nullopt;
  key.remove_prefix(4);
  if (key.empty()) return key;
  if (!key.starts_with('[') || !key.ends_with(']')) return std::nullopt;
  return key.substr(1, key.size() - 2);
}

char escaped(char letter) {
  switch (letter) {
    case 's':
      return ' ';
    case 'n':
      return '\n';
    case 't':
      return '\t';
    case 'r':
      return '\r';
    default:
      return letter;
  }
}

std::string unescaped(std::string_view value) {
  std::string text;
  for (std::size_t i = 0; i < value.size(); ++i)
    text += value[i] == '\\' && i + 1 < value.size() ? escaped(value[++i]) : value[i];
  return text;
}

/// How good a language is: 0 is best; absent when nobody wants it.
std::optional<std::size_t> rankOf(std::string_view language,
                                  std::span<const std::string> languages) {
  if (language.empty()) return languages.size();
  for (std::size_t i = 0; i < languages.size(); ++i)
    if (languages[i] == language) return i;
  return std::nullopt;
}

}  // namespace

std::optional<std::string> nameInDesktopEntry(std::string_view text,
                                              std::span<const std::string> languages) {
  std::string_view best;
  std::size_t bestRank = languages.size() + 1;
  bool isInGroup = false;
  forEachLine(text, [&](std::string_view line) {
    if (line.front() == '[') isInGroup = line == "[Desktop Entry]";
    const std::size_t sign = line.find('=');
    if (!isInGroup || sign == std::string_view::npos) return;
    const auto language = languageOfName(trimmed(line.substr(0, sign)));
    const auto rank = language ? rankOf(*language, languages) : std::nullopt;
    const std::string_view value = trimmed(line.substr(sign + 1));
    if (rank && *rank < bestRank && !value.empty()) best = value, bestRank = *rank;
  });
  if (best.empty()) return std::nullopt;
  return unescaped(best);
}

}  // namespace kbx
