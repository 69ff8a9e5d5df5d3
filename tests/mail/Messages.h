// Messages: what the mail importer finds in a message that a test writes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "mail/ImportMessage.h"
#include "mail/MessageReader.h"
#include "platform/objects/NSArray.h"
#include "tests/support/EMLX.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {

/// The attributes of a file with these bytes.
inline Ref<NSMutableDictionary> attributesOfFile(std::string_view bytes) {
  TemporaryFolder folder;
  auto attributes = NSMutableDictionary::dictionary();
  EXPECT_TRUE(importMessage(folder.write("message.emlx", bytes), nullptr, attributes, nullptr));
  return attributes;
}

inline Ref<NSMutableDictionary> attributesOf(std::string_view message,
                                             std::string_view list = kEmptyList) {
  return attributesOfFile(emlx(message, list));
}

/// The description of one attribute, "(null)" without it; of an array, its elements joined by "|".
inline std::string shown(NSObject* value) {
  auto* list = cast<NSArray>(value);
  return text(list ? list->componentsJoinedByString("|"_ns).get() : value);
}

inline std::string attribute(std::string_view message, std::string_view name) {
  return shown(attributesOf(message)->objectForKey(string(name)));
}

/// What the reader finds, given the message whole.
inline MessageContent contentOf(std::string_view message) {
  TextDecoder decoder;
  MessageReader reader(decoder);
  reader.add(message);
  return reader.take();
}

/// Time and time again the same text, without a stream.
inline std::string repeated(std::string_view text, std::size_t count) {
  std::string result;
  result.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

}  // namespace kbx
