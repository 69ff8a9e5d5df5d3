// Messages of strangers: read in one piece and in many they give the same, and all text is UTF-8.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "mail/Attributes.h"
#include "mail/MessageReader.h"
#include "platform/objects/NSArray.h"
#include "platform/text/UTF8.h"

namespace kbx {
namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

MessageContent read(std::string_view message, std::size_t piece, TextDecoder& decoder) {
  MessageReader reader(decoder);
  for (; !message.empty(); message.remove_prefix(std::min(piece, message.size())))
    reader.add(message.substr(0, piece));
  return reader.take();
}

void checkText(std::string_view text) { require(isUTF8(text) && text.find('\0') == text.npos); }

void checkContent(const MessageContent& content) {
  for (const TextSection& section : content.sections.sections()) {
    require(section.plain || section.html);
    if (section.plain) checkText(*section.plain);
    if (section.html) checkText(*section.html);
  }
  for (const Attachment& part : content.namedParts) checkText(part.name);
}

void checkAttributes(MessageContent content, TextDecoder& decoder) {
  auto attributes = NSMutableDictionary::dictionary();
  setAttributes(attributes, std::move(content), NSDictionary::dictionary(), 0, nullptr, decoder);
  for (const auto& entry : *attributes) {
    require(cast<NSString>(entry.key));
    if (auto* text = cast<NSString>(entry.value)) require(text->UTF8String().has_value());
    auto* list = cast<NSArray>(entry.value);
    if (list) require(list->count() > 0);
  }
}

}  // namespace
}  // namespace kbx

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace kbx;
  const std::string_view message(reinterpret_cast<const char*>(bytes), size);
  TextDecoder whole, cut;
  MessageContent content = read(message, size + 1, whole);
  const MessageContent again = read(message, 7, cut);
  checkContent(content);
  require(content.header == again.header);
  require(content.namedParts.size() == again.namedParts.size());
  checkAttributes(std::move(content), whole);
  return 0;
}
