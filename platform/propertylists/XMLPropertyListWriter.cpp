#include "platform/propertylists/XMLPropertyListWriter.h"

#include <algorithm>
#include <string_view>

#include "platform/markup/Characters.h"
#include "platform/markup/Entities.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/ByteBuffer.h"
#include "platform/propertylists/PropertyListText.h"
#include "platform/propertylists/SortedEntries.h"
#include "platform/propertylists/XMLPropertyListHead.h"
#include "platform/text/Base64.h"
#include "platform/text/UTF8.h"

namespace kbx {
namespace {

struct Tags {
  std::string_view start, end;
};

constexpr Tags kKeyTags = {"<key>", "</key>\n"};
constexpr Tags kStringTags = {"<string>", "</string>\n"};
constexpr Tags kIntegerTags = {"<integer>", "</integer>\n"};
constexpr Tags kRealTags = {"<real>", "</real>\n"};
constexpr Tags kDateTags = {"<date>", "</date>\n"};
constexpr char kFoot[] = "</plist>\n";

constexpr std::size_t kLineWidth = 76;
constexpr std::size_t kTabWidth = 8;
constexpr std::size_t kDeepestDataIndent = 8;  // tabs; deeper ones would leave no room for bytes

class Writer {
 public:
  Ref<NSData> write(NSObject* list) {
    for (std::string_view line : {kXMLDeclaration, kXMLDocumentType, kXMLPlistTag})
      _text.append(line).append("\n");
    appendValue(list, 0);
    return _text.append(kFoot).take();
  }

 private:
  void appendIndent(std::size_t level) { _text.append(level, '\t'); }
  void appendElement(const Tags& tags, std::string_view text) {
    _text.append(tags.start).append(text).append(tags.end);
  }
  void appendEscaped(std::string_view text);
  void appendText(const Tags& tags, NSString* text);
  void appendNumber(NSNumber* number);
  void appendData(NSData* data, std::size_t level);
  void appendArray(NSArray* array, std::size_t level);
  void appendDictionary(NSDictionary* dictionary, std::size_t level);
  void appendLeaf(NSObject* value, std::size_t level);
  void appendValue(NSObject* value, std::size_t level);

  ByteBuffer _text;
};

/// What is written for a character that cannot stand for itself.
std::string_view escapeOf(char letter) {
  if (letter == '\r') return "&#13;";  // a plain one would be read as a line feed
  return entityFor(static_cast<unsigned char>(letter));
}

void Writer::appendEscaped(std::string_view text) {
  const char* const end = text.data() + text.size();
  for (const char* plain = text.data(); plain != end;) {
    const char* const stop = findAnyByte<'<', '>', '&', '\r'>(plain, end);
    _text.append({plain, static_cast<std::size_t>(stop - plain)});
    if (stop == end) return;
    _text.append(escapeOf(*stop));
    plain = stop + 1;
  }
}

void Writer::appendText(const Tags& tags, NSString* text) {
  _text.append(tags.start);
  text->visitUnits([this](auto units) {
    if constexpr (sizeof(units[0]) == 1)
      appendEscaped({units.data(), units.size()});
    else
      appendEscaped(lossyUTF8FromUTF16({units.data(), units.size()}));
  });
  _text.append(tags.end);
}

void Writer::appendNumber(NSNumber* number) {
  if (number->isBoolean())
    _text.append(number->boolValue() ? "<true/>\n" : "<false/>\n");
  else if (number->kind() == NSNumber::Kind::Real)
    appendElement(kRealTags, textFromReal(number->doubleValue()));
  else
    appendElement(kIntegerTags, textFromInteger(*number));
}

void Writer::appendData(NSData* data, std::size_t level) {
  const std::size_t indent = std::min(level, kDeepestDataIndent);
  const std::size_t width = kLineWidth - kTabWidth * indent;
  const std::size_t bytesInLine = width / 4 * 3;
  _text.append("<data>\n");
  for (auto rest = data->view(); !rest.empty();) {
    const auto line = rest.substr(0, bytesInLine);
    rest.remove_prefix(line.size());
    appendIndent(indent);
    writeBase64(_text.grow(base64Length(line.size())), line);
    _text.append("\n");
  }
  appendIndent(level);
  _text.append("</data>\n");
}

void Writer::appendArray(NSArray* array, std::size_t level) {
  if (array->count() == 0) {
    _text.append("<array/>\n");
    return;
  }
  _text.append("<array>\n");
  for (const auto& element : *array) appendValue(element, level + 1);
  appendIndent(level);
  _text.append("</array>\n");
}

void Writer::appendDictionary(NSDictionary* dictionary, std::size_t level) {
  if (dictionary->count() == 0) {
    _text.append("<dict/>\n");
    return;
  }
  _text.append("<dict>\n");
  for (const auto* entry : sortedEntries(dictionary)) {
    appendIndent(level + 1);
    appendText(kKeyTags, static_cast<NSString*>(entry->key.get()));
    appendValue(entry->value, level + 1);
  }
  appendIndent(level);
  _text.append("</dict>\n");
}

void Writer::appendLeaf(NSObject* value, std::size_t level) {
  if (auto* number = cast<NSNumber>(value))
    appendNumber(number);
  else if (auto* date = cast<NSDate>(value))
    appendElement(kDateTags, *textFromDate(date->timeIntervalSinceReferenceDate()));
  else
    appendData(cast<NSData>(value), level);
}

void Writer::appendValue(NSObject* value, std::size_t level) {
  appendIndent(level);
  if (auto* text = cast<NSString>(value))  // what most values are
    appendText(kStringTags, text);
  else if (auto* array = cast<NSArray>(value))
    appendArray(array, level);
  else if (auto* dictionary = cast<NSDictionary>(value))
    appendDictionary(dictionary, level);
  else
    appendLeaf(value, level);
}

}  // namespace

Ref<NSData> xmlFromPropertyList(NSObject* list) { return Writer().write(list); }

}  // namespace kbx
