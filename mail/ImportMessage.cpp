#include "mail/ImportMessage.h"

#include <utility>

#include "mail/Attributes.h"
#include "mail/MessageReader.h"
#include "mail/TextDecoder.h"
#include "platform/messages/EMLXFile.h"

namespace kbx {

bool importMessage(NSURL* file, NSString* contentType, NSMutableDictionary* attributes,
                   Ref<NSError>* error) {
  EMLXFile message(file, error);
  if (!message.isOpen()) return false;
  TextDecoder decoder;
  MessageReader reader(decoder);
  for (auto piece = message.nextPiece(); !piece.empty(); piece = message.nextPiece())
    reader.add(piece);
  const std::uint64_t size = message.messageSize();
  Ref<NSDictionary> properties = message.properties();
  // Half a message must not pass for the whole.
  if (message.failure()) {
    if (error) *error = message.failure();
    return false;
  }
  setAttributes(attributes, reader.take(), properties, size, contentType, decoder);
  return true;
}

}  // namespace kbx
