#include "host/export/MboxWriter.h"

#include <memory>

#include "host/export/MboxText.h"
#include "platform/files/FileErrors.h"
#include "platform/files/FileSystem.h"
#include "platform/messages/EMLXFile.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/text/ASCII.h"

namespace kbx {
namespace {

std::string authorOf(NSDictionary* attributes) {
  auto* addresses = cast<NSArray>(attributes->objectForKey("kMDItemAuthorEmailAddresses"_ns));
  auto* first = addresses && addresses->count() > 0 ? cast<NSString>(*addresses->begin()) : nullptr;
  return first ? first->lossyUTF8() : "";
}

double timeOf(NSDictionary* attributes) {
  for (auto* key : {"com_apple_mail_dateReceived"_ns, "kMDItemContentCreationDate"_ns})
    if (auto* date = cast<NSDate>(attributes->objectForKey(key)))
      return date->timeIntervalSince1970();
  return 0;
}

/// Writes pieces as they come, the envelope line before the first of them.
class MessageCopy {
 public:
  MessageCopy(Output& output, NSDictionary* attributes)
      : _output(output), _text(output), _attributes(attributes) {}

  void take(std::string_view piece) {
    if (!_hasBegun) begin(piece);
    _text.take(piece);
  }
  void end() {
    if (!_hasBegun) begin({});
    _text.end();
  }

 private:
  /// head  the beginning of the message; fields far behind it do not matter
  void begin(std::string_view head) {
    _hasBegun = true;
    std::string sender = returnPathOf(head);
    if (sender.empty()) sender = authorOf(_attributes);
    _output.write(envelopeLine(sender, timeOf(_attributes)));
    _output.write('\n');
  }

  Output& _output;
  MboxText _text;
  NSDictionary* const _attributes;
  bool _hasBegun = false;
};

bool copyWrapped(NSURL* url, MessageCopy& copy, Ref<NSError>* error) {
  EMLXFile file(url, error);
  if (!file.isOpen()) return false;
  for (auto piece = file.nextPiece(); !piece.empty(); piece = file.nextPiece()) copy.take(piece);
  copy.end();
  if (file.failure()) *error = file.failure();
  return !file.failure();
}

bool copyPlain(NSURL* url, MessageCopy& copy, Ref<NSError>* error) {
  constexpr std::size_t kPiece = 1 << 16;
  const ReadableFile file(url, error);
  if (!file.isOpen()) return false;
  const auto buffer = std::make_unique_for_overwrite<char[]>(kPiece);
  std::int64_t size = 0;
  while ((size = FileSystem::current().read(file.descriptor(), buffer.get(), kPiece)) > 0)
    copy.take({buffer.get(), static_cast<std::size_t>(size)});
  copy.end();
  if (size < 0) *error = fileError(url, FileAction::Reading, static_cast<int>(-size));
  return size == 0;
}

}  // namespace

bool writeMboxMessage(Output& output, const std::string& path, NSDictionary* attributes,
                      Ref<NSError>* error) {
  auto url = NSURL::fileURLWithFileSystemRepresentation(path, false);
  MessageCopy copy(output, attributes);
  return endsIgnoringASCIICase(path, ".emlx") ? copyWrapped(url, copy, error)
                                              : copyPlain(url, copy, error);
}

}  // namespace kbx
