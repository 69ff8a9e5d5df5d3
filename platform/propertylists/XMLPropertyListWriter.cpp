#include "platform/propertylists/XMLPropertyListWriter.h"

#include <algorithm>
#include <string_view>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/PropertyListText.h"
#include "platform/propertylists/SortedEntries.h"
#include "platform/text/Base64.h"

namespace kbx {
namespace {

constexpr char kHead[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr char kFoot[] = "</plist>\n";

constexpr std::size_t kLineWidth = 76;
constexpr std::size_t kTabWidth = 8;
constexpr std::size_t kDeepestDataIndent = 8;  // tabs; deeper ones would leave no room for bytes

class Writer {
 public:
  std::string write(NSObject* list) {
    _text = kHead;
    appendValue(list, 0);
    return std::move(_text.append(kFoot));
  }

 private:
  void appendIndent(std::size_t level) { _text.append(level, '\t'); }
  void appendElement(std::string_view name, std::string_view text) {
    _text.append("<").append(name).append(">").append(text);
    _text.append("</").append(name).append(">\n");
  }
  void appendText(std::string_view name, NSString* text);
  void appendNumber(NSNumber* number);
  void appendData(NSData* data, std::size_t level);
  void appendArray(NSArray* array, std::size_t level);
  void appendDictionary(NSDictionary* dictionary, std::size_t level);
  void appendLeaf(NSObject* value, std::size_t level);
  void appendValue(NSObject* value, std::size_t level);

  std::string _text;
};

std::string escaped(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (char letter : text) {
    if (letter == '<')
      result += "&lt;";
    else if (letter == '>')
      result += "&gt;";
    else if (letter == '&')
      result += "&amp;";
    else if (letter == '\r')
      result += "&#13;";  // a plain one would be read as a line feed
    else
      result += letter;
  }
  return result;
}

void Writer::appendText(std::string_view name, NSString* text) {
  appendElement(name, escaped(text->lossyUTF8()));
}

void Writer::appendNumber(NSNumber* number) {
  if (number->isBoolean())
    _text += number->boolValue() ? "<true/>\n" : "<false/>\n";
  else if (number->kind() == NSNumber::Kind::Real)
    appendElement("real", textFromReal(number->doubleValue()));
  else
    appendElement("integer", textFromInteger(*number));
}

void Writer::appendData(NSData* data, std::size_t level) {
  const std::size_t indent = std::min(level, kDeepestDataIndent);
  const std::size_t width = kLineWidth - kTabWidth * indent;
  const std::string digits = base64FromBytes(data->view());
  _text += "<data>\n";
  for (std::size_t at = 0; at < digits.size(); at += width) {
    appendIndent(indent);
    _text.append(digits, at, width).append("\n");
  }
  appendIndent(level);
  _text += "</data>\n";
}

void Writer::appendArray(NSArray* array, std::size_t level) {
  if (array->count() == 0) {
    _text += "<array/>\n";
    return;
  }
  _text += "<array>\n";
  for (const auto& element : *array) appendValue(element, level + 1);
  appendIndent(level);
  _text += "</array>\n";
}

void Writer::appendDictionary(NSDictionary* dictionary, std::size_t level) {
  if (dictionary->count() == 0) {
    _text += "<dict/>\n";
    return;
  }
  _text += "<dict>\n";
  for (const auto* entry : sortedEntries(dictionary)) {
    appendIndent(level + 1);
    appendText("key", static_cast<NSString*>(entry->key.get()));
    appendValue(entry->value, level + 1);
  }
  appendIndent(level);
  _text += "</dict>\n";
}

void Writer::appendLeaf(NSObject* value, std::size_t level) {
  if (auto* text = cast<NSString>(value))
    appendText("string", text);
  else if (auto* number = cast<NSNumber>(value))
    appendNumber(number);
  else if (auto* date = cast<NSDate>(value))
    appendElement("date", *textFromDate(date->timeIntervalSinceReferenceDate()));
  else
    appendData(cast<NSData>(value), level);
}

void Writer::appendValue(NSObject* value, std::size_t level) {
  appendIndent(level);
  if (auto* array = cast<NSArray>(value))
    appendArray(array, level);
  else if (auto* dictionary = cast<NSDictionary>(value))
    appendDictionary(dictionary, level);
  else
    appendLeaf(value, level);
}

}  // namespace

std::string xmlFromPropertyList(NSObject* list) { return Writer().write(list); }

}  // namespace kbx
