#include "mail/MediaTypes.h"

#include <algorithm>

#include "mail/ASCII.h"

namespace kbx {
namespace {

using List = std::initializer_list<std::string_view>;

bool isOneOf(std::string_view type, List list) {
  return std::ranges::find(list, type) != list.end();
}

struct KnownType {
  std::string_view media;  // empty: another ending of the type above
  std::string_view ending;
  std::string_view identifier;
};

constexpr KnownType kKnownTypes[] = {
    {"application/pdf", "pdf", "com.adobe.pdf"},
    {"application/postscript", "ps", "com.adobe.postscript"},
    {"application/zip", "zip", "public.zip-archive"},
    {"application/x-zip-compressed", "zip", "public.zip-archive"},
    {"application/gzip", "gz", "org.gnu.gnu-zip-archive"},
    {"application/x-gzip", "tgz", "org.gnu.gnu-zip-archive"},
    {"application/x-tar", "tar", "public.tar-archive"},
    {"application/msword", "doc", "com.microsoft.word.doc"},
    {"application/vnd.openxmlformats-officedocument.wordprocessingml.document", "docx",
     "org.openxmlformats.wordprocessingml.document"},
    {"application/vnd.ms-excel", "xls", "com.microsoft.excel.xls"},
    {"application/vnd.openxmlformats-officedocument.spreadsheetml.sheet", "xlsx",
     "org.openxmlformats.spreadsheetml.sheet"},
    {"application/vnd.ms-powerpoint", "ppt", "com.microsoft.powerpoint.ppt"},
    {"application/vnd.openxmlformats-officedocument.presentationml.presentation", "pptx",
     "org.openxmlformats.presentationml.presentation"},
    {"application/vnd.oasis.opendocument.text", "odt", "org.oasis-open.opendocument.text"},
    {"application/vnd.oasis.opendocument.spreadsheet", "ods",
     "org.oasis-open.opendocument.spreadsheet"},
    {"application/rtf", "rtf", "public.rtf"},
    {"text/rtf", "rtf", "public.rtf"},
    {"application/json", "json", "public.json"},
    {"application/xml", "xml", "public.xml"},
    {"text/xml", "xml", "public.xml"},
    {"image/jpeg", "jpg", "public.jpeg"},
    {"image/jpg", "jpeg", "public.jpeg"},
    {"image/pjpeg", "jpe", "public.jpeg"},
    {"image/png", "png", "public.png"},
    {"image/gif", "gif", "com.compuserve.gif"},
    {"image/tiff", "tiff", "public.tiff"},
    {"image/tiff", "tif", "public.tiff"},
    {"image/bmp", "bmp", "com.microsoft.bmp"},
    {"image/svg+xml", "svg", "public.svg-image"},
    {"image/webp", "webp", "org.webmproject.webp"},
    {"image/heic", "heic", "public.heic"},
    {"audio/mpeg", "mp3", "public.mp3"},
    {"audio/wav", "wav", "com.microsoft.waveform-audio"},
    {"audio/x-wav", "wav", "com.microsoft.waveform-audio"},
    {"audio/mp4", "m4a", "public.mpeg-4-audio"},
    {"video/mp4", "mp4", "public.mpeg-4"},
    {"video/quicktime", "mov", "com.apple.quicktime-movie"},
    {"video/mpeg", "mpg", "public.mpeg"},
    {"text/plain", "txt", "public.plain-text"},
    {"text/html", "html", "public.html"},
    {"text/html", "htm", "public.html"},
    {"text/csv", "csv", "public.comma-separated-values-text"},
    {"text/calendar", "ics", "com.apple.ical.ics"},
    {"application/ics", "ics", "com.apple.ical.ics"},
    {"text/vcard", "vcf", "public.vcard"},
    {"text/x-vcard", "vcf", "public.vcard"},
    {"message/rfc822", "eml", "com.apple.mail.email"},
};

struct KnownKind {
  std::string_view start;
  std::string_view identifier;
};
constexpr KnownKind kKnownKinds[] = {{"image/", "public.image"},
                                     {"audio/", "public.audio"},
                                     {"video/", "public.movie"},
                                     {"text/", "public.text"}};

}  // namespace

bool isMessage(std::string_view type) {
  return isOneOf(type, {"message/rfc822", "message/global", "message/news", "message/partial"});
}

bool isPlainText(std::string_view type) {
  // A type without a subtype, or one that cannot be a type, is no type.
  return type.empty() || type == "text/plain" || type.find('/') == std::string_view::npos;
}

bool isShownAsText(std::string_view type) {
  if (isPlainText(type)) return true;
  if (type.starts_with("text/"))
    return !isOneOf(type,
                    {"text/calendar", "text/vcard", "text/x-vcard", "text/directory", "text/css",
                     "text/rtf", "text/x-amp-html", "text/watch-html", "text/javascript"});
  // A container or message that lies too deep is shown as it is written.
  return type.starts_with("multipart/") || isMessage(type) ||
         isOneOf(type, {"message/delivery-status", "message/disposition-notification",
                        "message/feedback-report", "message/global-delivery-status"});
}

bool isAttachment(std::string_view type) {
  return !isShownAsText(type) && !type.starts_with("message/") && !type.starts_with("text/");
}

bool isSignature(std::string_view type) {
  return isOneOf(type, {"application/pgp-signature", "application/pkcs7-signature",
                        "application/x-pkcs7-signature"});
}

bool isSignedOrEncrypted(std::string_view type) {
  return isOneOf(type, {"application/pkcs7-mime", "application/x-pkcs7-mime"});
}

bool isEncryptedOnly(std::string_view smimeType) {
  return isSameWord(smimeType, "enveloped-data") || isSameWord(smimeType, "authenveloped-data");
}

bool startsSealed(std::string_view text) {
  return trimmed(text.substr(0, 4096)).starts_with("-----BEGIN PGP MESSAGE-----");
}

std::string_view textBehindSeal(std::string_view text) {
  constexpr std::string_view kEnd = "-----END PGP MESSAGE-----";
  const std::size_t end = text.find(kEnd);
  return end == std::string_view::npos ? std::string_view() : text.substr(end + kEnd.size());
}

std::string_view uniformType(std::string_view type, std::string_view name) {
  for (const KnownType& known : kKnownTypes)
    if (known.media == type) return known.identifier;
  const std::size_t dot = name.rfind('.');
  const std::string_view ending = dot == std::string_view::npos ? "" : name.substr(dot + 1);
  for (const KnownType& known : kKnownTypes)
    if (isSameWord(known.ending, ending)) return known.identifier;
  for (const KnownKind& kind : kKnownKinds)
    if (type.starts_with(kind.start)) return kind.identifier;
  return "public.data";
}

std::string charsetOfHTML(std::string_view html) {
  constexpr std::size_t kNear = 1024;
  const std::string start = lowercase(html.substr(0, kNear));
  std::size_t at = start.find("<meta");
  if (at != std::string::npos) at = start.find("charset=", at);
  if (at == std::string::npos) return {};
  at += 8;
  while (at < start.size() && (start[at] == '"' || start[at] == '\'' || start[at] == ' ')) ++at;
  const std::size_t end = start.find_first_of("\"'; />", at);
  return end == std::string::npos ? std::string() : start.substr(at, end - at);
}

}  // namespace kbx
