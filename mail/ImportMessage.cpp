#include "mail/ImportMessage.h"

#include <algorithm>
#include <string>
#include <utility>

#include "mail/Attributes.h"
#include "mail/MessageReader.h"
#include "mail/TextDecoder.h"
#include "platform/messages/EMLXFile.h"

namespace kbx {
namespace {

/// Hands the message to the reader. Lines may end in CR alone, as on old systems.
MessageContent contentOf(EMLXFile& message, TextDecoder& decoder) {
  MessageReader reader(decoder);
  auto piece = message.nextPiece();
  const bool endsInCR = piece.find('\n') == piece.npos && piece.find('\r') != piece.npos;
  std::string converted;
  for (; !piece.empty(); piece = message.nextPiece()) {
    if (!endsInCR) {
      reader.add(piece);
      continue;
    }
    converted = piece;
    std::ranges::replace(converted, '\r', '\n');
    reader.add(converted);
  }
  return reader.take();
}

}  // namespace

bool importMessage(NSURL* file, NSString* contentType, NSMutableDictionary* attributes,
                   Ref<NSError>* error) {
  EMLXFile message(file, error);
  if (!message.isOpen()) return false;
  TextDecoder decoder;
  MessageContent content = contentOf(message, decoder);
  const std::uint64_t size = message.messageSize();
  Ref<NSDictionary> properties = message.properties();
  // Half a message must not pass for the whole.
  if (message.failure()) {
    if (error) *error = message.failure();
    return false;
  }
  // A header whose writer encoded nothing is in the charset of the text.
  decoder.expect(content.charset);
  setAttributes(attributes, std::move(content), properties, size, contentType, decoder);
  return true;
}

}  // namespace kbx
