#include "platform/resources/TypeIdentifiers.h"

#include "platform/desktop/MimeTypes.h"
#include "platform/text/ASCII.h"

namespace kbx {
namespace {

struct Known {
  std::string_view key;
  const char* identifier;
};

// Longer endings stand before the shorter ones that they end in.
constexpr Known kEndings[] = {
    {".partial.emlx", "com.apple.mail.emlx.part"},
    {".emlx", "com.apple.mail.emlx"},
    {".eml", "com.apple.mail.email"},
    {".html", "public.html"},
    {".htm", "public.html"},
    {".txt", "public.plain-text"},
    {".xml", "public.xml"},
    {".plist", "com.apple.property-list"},
    {".pdf", "com.adobe.pdf"},
    {".rtf", "public.rtf"},
    {".csv", "public.comma-separated-values-text"},
    {".json", "public.json"},
    {".vcf", "public.vcard"},
    {".ics", "com.apple.ical.ics"},
    {".png", "public.png"},
    {".jpg", "public.jpeg"},
    {".jpeg", "public.jpeg"},
    {".gif", "com.compuserve.gif"},
    {".tiff", "public.tiff"},
    {".tif", "public.tiff"},
    {".zip", "public.zip-archive"},
    {".tar", "public.tar-archive"},
    {".tgz", "org.gnu.gnu-zip-tar-archive"},
    {".tar.gz", "org.gnu.gnu-zip-tar-archive"},
    {".gz", "org.gnu.gnu-zip-archive"},
};

constexpr Known kMIMETypes[] = {
    {"application/gzip", "org.gnu.gnu-zip-archive"},
    {"application/json", "public.json"},
    {"application/mbox", "com.apple.mail.mbox"},
    {"application/pdf", "com.adobe.pdf"},
    {"application/postscript", "com.adobe.postscript"},
    {"application/rtf", "public.rtf"},
    {"application/vnd.openxmlformats-officedocument.presentationml.presentation",
     "org.openxmlformats.presentationml.presentation"},
    {"application/vnd.openxmlformats-officedocument.spreadsheetml.sheet",
     "org.openxmlformats.spreadsheetml.sheet"},
    {"application/vnd.openxmlformats-officedocument.wordprocessingml.document",
     "org.openxmlformats.wordprocessingml.document"},
    {"application/x-bzip", "public.bzip2-archive"},
    {"application/x-shellscript", "public.shell-script"},
    {"application/x-tar", "public.tar-archive"},
    {"application/xml", "public.xml"},
    {"application/zip", "public.zip-archive"},
    {"audio/mpeg", "public.mp3"},
    {"image/bmp", "com.microsoft.bmp"},
    {"image/gif", "com.compuserve.gif"},
    {"image/heif", "public.heif"},
    {"image/jpeg", "public.jpeg"},
    {"image/png", "public.png"},
    {"image/svg+xml", "public.svg-image"},
    {"image/tiff", "public.tiff"},
    {"image/webp", "org.webmproject.webp"},
    {"message/rfc822", "com.apple.mail.email"},
    {"text/calendar", "com.apple.ical.ics"},
    {"text/csv", "public.comma-separated-values-text"},
    {"text/html", "public.html"},
    {"text/plain", "public.plain-text"},
    {"text/vcard", "public.vcard"},
    {"text/x-c++src", "public.c-plus-plus-source"},
    {"text/x-chdr", "public.c-header"},
    {"text/x-csrc", "public.c-source"},
    {"text/x-python", "public.python-script"},
    {"video/mp4", "public.mpeg-4"},
    {"video/quicktime", "com.apple.quicktime-movie"},
    // The kinds, for every other type of theirs.
    {"audio/", "public.audio"},
    {"font/", "public.font"},
    {"image/", "public.image"},
    {"text/", "public.text"},
    {"video/", "public.movie"},
};

/// The ending alone is no name with an ending.
bool endsIn(std::string_view name, std::string_view ending) {
  return name.size() > ending.size() && endsIgnoringASCIICase(name, ending);
}

}  // namespace

Ref<NSString> typeIdentifier(std::string_view name, bool isFolder) {
  if (isFolder) return "public.folder"_ns;
  for (const auto& known : kEndings)
    if (endsIn(name, known.key)) return NSString::stringWithUTF8(known.identifier);
  return typeIdentifierOfMIMEType(MimeTypes::current().typeOfName(name));
}

Ref<NSString> typeIdentifierOfMIMEType(std::string_view type) {
  for (const auto& known : kMIMETypes)
    if (type == known.key || (known.key.ends_with('/') && type.starts_with(known.key)))
      return NSString::stringWithUTF8(known.identifier);
  return "public.data"_ns;
}

}  // namespace kbx
