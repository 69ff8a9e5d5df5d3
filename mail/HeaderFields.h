// HeaderFields: the fields of a header that somebody asks for.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kbx {

enum class HeaderField : std::uint8_t {
  Bcc,
  Cc,
  ContentDisposition,
  ContentLanguage,
  ContentTransferEncoding,
  ContentType,
  Date,
  From,
  Importance,
  InReplyTo,
  Keywords,
  ListID,
  MSMailPriority,
  Mailer,
  MessageID,
  Priority,
  References,
  ReplyTo,
  Sender,
  SpamFlag,
  SpamStatus,
  Subject,
  To,
  UserAgent,
  XPriority,
  Count
};

/// The raw values of the known fields in a header's bytes, which it only points into. The first
/// field of a name wins. A field that nobody asks for costs one comparison and no memory, so that
/// a header of a million fields is no burden.
class HeaderFields {
 public:
  HeaderFields() = default;
  /// header  whole lines; must outlive this
  explicit HeaderFields(std::string_view header);

  /// Empty without such a field.
  std::string_view operator[](HeaderField field) const {
    return _values[static_cast<std::size_t>(field)];
  }
  /// The raw values of the topmost Received fields, at most 16. The newest comes first.
  std::span<const std::string_view> received() const { return {_received.data(), _receivedCount}; }

 private:
  void add(std::string_view name, std::string_view value);

  std::array<std::string_view, static_cast<std::size_t>(HeaderField::Count)> _values;
  std::array<std::string_view, 16> _received;
  std::size_t _receivedCount = 0;
};

/// The length of the field name at the start of a line, which a colon follows; 0 without one.
std::size_t fieldNameLength(std::string_view line);

/// Whether the line begins with the name of a field that is known or customary in mail, so that it
/// is hardly a sentence.
bool beginsWithUsualField(std::string_view line);

}  // namespace kbx
