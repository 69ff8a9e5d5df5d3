// MessageContent: what is found in a message.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "mail/TextSections.h"

namespace kbx {

struct Attachment {
  std::string name;  // UTF-8
  std::string type;  // media type in small letters; may be empty
};

struct MessageContent {
  std::string header;   // the bytes of the message's own header fields
  std::string charset;  // declared by the first text that declares one
  TextSections sections;
  std::vector<Attachment> namedParts;  // in order; those of attached messages left out
  bool hasPlainPart = false;           // one with text, not in an attached or wrapped message
  bool hasHTMLPart = false;
  bool hasAttachment = false;  // named or not
  bool isSigned = false;
  bool isEncrypted = false;
};

}  // namespace kbx
