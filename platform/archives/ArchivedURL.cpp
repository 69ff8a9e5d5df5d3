#include "platform/archives/ArchivedURL.h"

#include <cctype>
#include <charconv>
#include <optional>
#include <string>

namespace kbx {
namespace {

/// The bytes that a part of a URL stands for, which need not be UTF-8.
std::optional<std::string> unescaped(std::string_view part) {
  std::string bytes;
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (part[i] != '%') {
      bytes += part[i];
      continue;
    }
    unsigned value = 0;
    if (part.size() - i < 3) return std::nullopt;
    const char* end = part.data() + i + 3;
    if (std::from_chars(part.data() + i + 1, end, value, 16).ptr != end) return std::nullopt;
    bytes += static_cast<char>(value);
    i += 2;
  }
  return bytes;
}

/// Whether a text begins with a scheme, such as "http:".
bool hasScheme(std::string_view text) {
  const std::size_t end = text.find_first_of(":/?#");
  return end != std::string_view::npos && text[end] == ':';
}

/// The path of an absolute file URL, still escaped.
std::optional<std::string_view> pathOfFileURL(std::string_view text) {
  constexpr std::string_view kScheme = "file:", kHost = "//", kThisHost = "localhost";
  if (!text.starts_with(kScheme)) return std::nullopt;
  text.remove_prefix(kScheme.size());
  if (text.starts_with(kHost)) text.remove_prefix(kHost.size());
  if (text.starts_with(kThisHost)) text.remove_prefix(kThisHost.size());
  return text.starts_with('/') ? std::optional(text) : std::nullopt;
}

Ref<NSURL> location(const std::string& path) {
  return NSURL::fileURLWithFileSystemRepresentation(path, path.ends_with('/'));
}

}  // namespace

Ref<NSURL> fileURLFromText(NSString* text, NSURL* base) {
  const auto utf8 = text->UTF8String();
  if (!utf8 || utf8->find_first_of("?#") != std::string::npos) return nullptr;
  const auto path = pathOfFileURL(*utf8);
  if (!path && (hasScheme(*utf8) || !base)) return nullptr;
  auto bytes = unescaped(path.value_or(*utf8));
  if (!bytes || path || bytes->starts_with('/')) return bytes ? location(*bytes) : nullptr;
  if (bytes->empty()) return base;
  std::string folder = base->fileSystemRepresentation();
  if (!base->hasDirectoryPath()) folder.resize(folder.rfind('/') + 1);
  if (!folder.ends_with('/')) folder += '/';
  return location(folder + *bytes);
}

}  // namespace kbx
