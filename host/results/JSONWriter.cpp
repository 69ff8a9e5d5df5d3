#include "host/results/JSONWriter.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "host/console/Escaping.h"
#include "host/results/Attributes.h"
#include "host/results/DateText.h"
#include "host/results/RepeatedContent.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "platform/text/Base64.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

constexpr SpecialCharacters kSpecialInJSON("\"\\");

}  // namespace

void JSONWriter::newLine() {
  _output.write('\n');
  _output.writeBlanks(2 * _hasElements.size());
}

void JSONWriter::beginElement() {
  if (_isAfterKey || _hasElements.empty()) {
    _isAfterKey = false;
    return;
  }
  if (_hasElements.back()) _output.write(_layout == Layout::OneLine ? ", " : ",");
  if (_layout == Layout::Indented) newLine();
  _hasElements.back() = true;
}

void JSONWriter::begin(char bracket) {
  token({&bracket, 1});
  _hasElements.push_back(false);
}

void JSONWriter::end(char bracket) {
  const bool hadElements = _hasElements.back();
  _hasElements.pop_back();
  if (hadElements && _layout == Layout::Indented) newLine();
  _output.write(bracket);
}

void JSONWriter::token(std::string_view text) {
  beginElement();
  _output.write(text);
}

void JSONWriter::quoted(NSString* text) {
  _output.write('"');
  writeUTF8(_output, text, kSpecialInJSON, [this](char16_t unit, char16_t) {
    if (unit == '"' || unit == '\\') {
      const char escape[] = {'\\', static_cast<char>(unit)};
      _output.write({escape, sizeof escape});
    } else {
      writeUnitEscape(_output, unit);
    }
  });
  _output.write('"');
}

void JSONWriter::key(NSString* name) {
  beginElement();
  quoted(name);
  _output.write(": ");
  _isAfterKey = true;
}

void JSONWriter::string(NSString* text) {
  beginElement();
  quoted(text);
}

void JSONWriter::integer(std::int64_t value) { token(std::to_string(value)); }

void JSONWriter::null() { token("null"); }

void JSONWriter::number(NSNumber* number) {
  if (number->isBoolean()) return token(number->boolValue() ? "true" : "false");
  if (!std::isfinite(number->doubleValue())) return null();
  token(number->description()->lossyUTF8());
}

void JSONWriter::date(NSDate* date) {
  auto text = internetDate(date);
  token(text ? '"' + *text + '"' : "null");
}

void JSONWriter::data(std::string_view bytes) {
  constexpr std::size_t kPiece = 3 << 14;  // of whole groups, so that the pieces join
  token("\"");
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kPiece, bytes.size())))
    _output.write(base64FromBytes(bytes.substr(0, kPiece)));
  _output.write('"');
}

void JSONWriter::array(NSArray* array, RepeatedContent& repeated) {
  if (!repeated.enter(array, array->count(), indent())) return null();
  beginArray();
  for (const auto& element : *array) nested(element, repeated);
  endArray();
  repeated.leave();
}

void JSONWriter::dictionary(NSDictionary* dictionary, RepeatedContent& repeated) {
  if (!repeated.enter(dictionary, dictionary->count(), indent())) return null();
  beginObject();
  for (const auto& [name, object] : sortedAttributes(dictionary)) {
    key(name);
    nested(object, repeated);
  }
  endObject();
  repeated.leave();
}

void JSONWriter::nested(NSObject* object, RepeatedContent& repeated) {
  if (!object || cast<NSNull>(object) || _hasElements.size() > kDeepest) return null();
  if (auto* text = cast<NSString>(object)) return repeated.take(text) ? string(text) : null();
  if (auto* count = cast<NSNumber>(object)) return number(count);
  if (auto* time = cast<NSDate>(object)) return date(time);
  if (auto* bytes = cast<NSData>(object))
    return repeated.take(bytes->length()) ? data(bytes->view()) : null();
  if (auto* list = cast<NSArray>(object)) return array(list, repeated);
  if (auto* entries = cast<NSDictionary>(object)) return dictionary(entries, repeated);
  string(descriptionOf(object));
}

void JSONWriter::value(NSObject* object) {
  RepeatedContent repeated;
  nested(object, repeated);
}

}  // namespace kbx
