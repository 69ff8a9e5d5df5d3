// StoredMessage: the attributes of a message as the columns of its row.
#pragma once

#include <optional>
#include <string>

#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// What one row of `message` holds. Absent is NULL. Texts are UTF-8.
struct StoredMessage {
  std::optional<std::string> subject, sender, recipient, cc, bcc, body, attachment, list;
  std::optional<double> date, received;  // seconds since 1970
  std::optional<bool> isRead, isFlagged, isReplied, isJunk, hasAttachment;
  std::optional<std::string> messageId;
  std::optional<std::int64_t> size;
  /// A binary property list of everything but the text of the body, as PackedAttributes.h packs it.
  std::string attributes;

  bool operator==(const StoredMessage&) const = default;
};

/// The row of a message. Absent with an error when the attributes are no property list. Safe from
/// any thread, so that workers may do it.
std::optional<StoredMessage> storedMessage(NSDictionary* attributes, Ref<NSError>* error);

/// The attributes as they were imported. Absent with an error when they are damaged.
///
/// body  absent is NULL
Ref<NSDictionary> importedAttributes(std::string_view attributes,
                                     std::optional<std::string_view> body, Ref<NSError>* error);

/// What the index knows of a file's name: the name without the folder and without the state that
/// a Maildir keeps behind it (":2,S"), which changes while the message does not.
std::string indexedFileName(std::string_view path);

}  // namespace kbx
