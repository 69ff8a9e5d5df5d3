#include "platform/files/TypeIdentifiers.h"

#include <algorithm>

namespace kbx {
namespace {

struct KnownType {
  std::string_view ending;
  const char* identifier;
};

// Longer endings stand before the shorter ones that they end in.
constexpr KnownType kKnownTypes[] = {
    {".partial.emlx", "com.apple.mail.emlx.part"},
    {".emlx", "com.apple.mail.emlx"},
    {".eml", "com.apple.mail.email"},
    {".html", "public.html"},
    {".htm", "public.html"},
    {".txt", "public.plain-text"},
    {".xml", "public.xml"},
    {".plist", "com.apple.property-list"},
    {".pdf", "com.adobe.pdf"},
};

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; }

bool endsIn(std::string_view name, std::string_view ending) {
  return name.size() > ending.size() &&
         std::ranges::equal(name.substr(name.size() - ending.size()), ending, {}, lower);
}

}  // namespace

Ref<NSString> typeIdentifier(std::string_view name, bool isFolder) {
  if (isFolder) return "public.folder"_ns;
  for (const auto& type : kKnownTypes)
    if (endsIn(name, type.ending)) return NSString::stringWithUTF8(type.identifier);
  return "public.data"_ns;
}

}  // namespace kbx
