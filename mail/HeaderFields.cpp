#include "mail/HeaderFields.h"

#include "mail/ASCII.h"

namespace kbx {
namespace {

// In the order of HeaderField.
constexpr std::string_view kNames[] = {"bcc",
                                       "cc",
                                       "content-disposition",
                                       "content-language",
                                       "content-transfer-encoding",
                                       "content-type",
                                       "date",
                                       "from",
                                       "importance",
                                       "in-reply-to",
                                       "keywords",
                                       "list-id",
                                       "x-msmail-priority",
                                       "x-mailer",
                                       "message-id",
                                       "priority",
                                       "references",
                                       "reply-to",
                                       "sender",
                                       "x-spam-flag",
                                       "x-spam-status",
                                       "subject",
                                       "to",
                                       "user-agent",
                                       "x-priority"};
static_assert(std::size(kNames) == static_cast<std::size_t>(HeaderField::Count));

/// The length of the field that begins a header: its line and the indented ones behind it.
std::size_t fieldLength(std::string_view header) {
  for (std::size_t at = 0;;) {
    const std::size_t end = header.find('\n', at);
    if (end == std::string_view::npos) return header.size();
    at = end + 1;
    if (at == header.size() || (header[at] != ' ' && header[at] != '\t')) return at;
  }
}

}  // namespace

HeaderFields::HeaderFields(std::string_view header) {
  while (!header.empty()) {
    const std::string_view field = header.substr(0, fieldLength(header));
    const std::size_t name = fieldNameLength(field);
    if (name > 0) add(trimmed(field.substr(0, name)), field.substr(field.find(':', name) + 1));
    header.remove_prefix(field.size());
  }
}

void HeaderFields::add(std::string_view name, std::string_view value) {
  if (_receivedCount < _received.size() && isSameWord(name, "received"))
    _received[_receivedCount++] = value;
  for (std::size_t i = 0; i < _values.size(); ++i) {
    if (!isSameWord(name, kNames[i])) continue;
    if (!_values[i].data()) _values[i] = value;
    return;
  }
}

std::size_t fieldNameLength(std::string_view line) {
  std::size_t end = 0;
  while (end < line.size() && line[end] > ' ' && line[end] != ':' && line[end] < 0x7F) ++end;
  std::size_t colon = end;
  while (colon < line.size() && (line[colon] == ' ' || line[colon] == '\t')) ++colon;
  return colon < line.size() && line[colon] == ':' ? end : 0;
}

bool beginsWithUsualField(std::string_view line) {
  const std::size_t length = fieldNameLength(line);
  if (length == 0) return false;
  const std::string_view name = line.substr(0, length);
  if (startsWithWord(name, "x-") || startsWithWord(name, "content-")) return true;
  for (std::string_view usual : {"received", "mime-version", "return-path", "delivered-to"})
    if (isSameWord(name, usual)) return true;
  for (std::string_view known : kNames)
    if (isSameWord(name, known)) return true;
  return false;
}

}  // namespace kbx
