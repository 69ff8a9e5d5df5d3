#include "host/results/PropertyListWriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "host/console/Escaping.h"
#include "host/results/Attributes.h"
#include "host/results/DateText.h"
#include "host/results/RepeatedContent.h"
#include "platform/files/FileNames.h"
#include "platform/markup/Entities.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/XMLPropertyListHead.h"
#include "platform/text/Base64.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

constexpr SpecialCharacters kSpecialInXML("<>&");
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

constexpr bool isSurrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }

/// Whether no reference stands for the unit either.
constexpr bool isNoXMLCharacter(char16_t unit) {
  return (unit < 0x20 && unit != '\t' && unit != '\n' && unit != '\r') || isSurrogate(unit) ||
         unit >= 0xFFFE;
}

void writeEscape(Output& output, char16_t unit) {
  if (unit == '\t' || unit == '\n') return output.write(static_cast<char>(unit));
  if (isNoXMLCharacter(unit)) return output.write(kReplacement);
  if (const auto entity = entityFor(unit); !entity.empty()) return output.write(entity);
  std::array<char, 8> digits;
  const auto end = std::to_chars(digits.begin(), digits.end(), static_cast<unsigned>(unit)).ptr;
  output.write("&#");
  output.write({digits.data(), static_cast<std::size_t>(end - digits.data())});
  output.write(';');
}

bool holdsXMLCharactersAlone(NSString* text) {
  return text->visitUnits([](auto units) {
    for (std::size_t i = 0; i < units.size(); ++i) {
      const auto unit = static_cast<char16_t>(units[i]);
      const bool isPair = detail::isLead(unit) && i + 1 < units.size() &&
                          detail::isTrail(static_cast<char16_t>(units[i + 1]));
      if (isPair)
        ++i;
      else if (isNoXMLCharacter(unit))
        return false;
    }
    return true;
  });
}

}  // namespace

void PropertyListWriter::begin() {
  for (std::string_view line : {kXMLDeclaration, kXMLDocumentType, kXMLPlistTag}) {
    _output.write(line);
    _output.write('\n');
  }
}

void PropertyListWriter::end() { _output.write("</plist>\n"); }

void PropertyListWriter::beginElement() {
  const auto indent = [this] {
    for (std::size_t i = 0; i < _level; ++i) _output.write('\t');
  };
  indent();
  if (!_key) return;
  const Ref<NSString> name = std::move(_key);
  _key = nullptr;
  _output.write("<key>");
  escaped(name);
  _output.write("</key>\n");
  indent();
}

void PropertyListWriter::open(std::string_view tag) {
  beginElement();
  _output.write('<');
  _output.write(tag);
  _output.write(">\n");
  ++_level;
}

void PropertyListWriter::close(std::string_view tag) {
  --_level;
  _key = nullptr;  // of a value that was left out
  beginElement();
  _output.write("</");
  _output.write(tag);
  _output.write(">\n");
}

void PropertyListWriter::element(std::string_view tag, std::string_view ours) {
  beginElement();
  _output.write('<');
  _output.write(tag);
  _output.write('>');
  _output.write(ours);
  _output.write("</");
  _output.write(tag);
  _output.write(">\n");
}

void PropertyListWriter::escaped(NSString* text) {
  writeUTF8(_output, text, kSpecialInXML,
            [this](char16_t unit, char16_t) { writeEscape(_output, unit); });
}

void PropertyListWriter::string(NSString* text) {
  beginElement();
  _output.write("<string>");
  escaped(text);
  _output.write("</string>\n");
}

void PropertyListWriter::integer(std::int64_t value) { element("integer", std::to_string(value)); }

void PropertyListWriter::path(const std::string& bytes) {
  auto text = NSString::stringWithUTF8(bytes);
  if (text && holdsXMLCharactersAlone(text)) return string(text);
  data(bytes);
}

void PropertyListWriter::number(NSNumber* number) {
  if (number->isBoolean()) {
    beginElement();
    return _output.write(number->boolValue() ? "<true/>\n" : "<false/>\n");
  }
  const double real = number->doubleValue();
  if (number->kind() != NSNumber::Kind::Real)
    element("integer", number->description()->lossyUTF8());
  else if (std::isinf(real))
    element("real", real < 0 ? "-infinity" : "+infinity");
  else
    element("real", number->description()->lossyUTF8());
}

void PropertyListWriter::date(NSObject* date) {
  const double seconds = cast<NSDate>(date)->timeIntervalSinceReferenceDate();
  const auto text =
      internetDate(NSDate::dateWithTimeIntervalSinceReferenceDate(std::floor(seconds)));
  if (text) element("date", *text);
}

void PropertyListWriter::data(std::string_view bytes) {
  constexpr std::size_t kPiece = 3 << 14;  // of whole groups, so that the pieces join
  beginElement();
  _output.write("<data>");
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kPiece, bytes.size())))
    _output.write(base64FromBytes(bytes.substr(0, kPiece)));
  _output.write("</data>\n");
}

void PropertyListWriter::array(NSArray* array, RepeatedContent& repeated) {
  if (!repeated.enter(array, array->count(), _level)) return;
  beginArray();
  for (const auto& element : *array) nested(element, repeated);
  endArray();
  repeated.leave();
}

void PropertyListWriter::dictionary(NSDictionary* dictionary, RepeatedContent& repeated) {
  if (!repeated.enter(dictionary, dictionary->count(), _level)) return;
  beginDictionary();
  for (const auto& [name, object] : sortedAttributes(dictionary)) {
    key(name);
    nested(object, repeated);
  }
  endDictionary();
  repeated.leave();
}

void PropertyListWriter::nested(NSObject* object, RepeatedContent& repeated) {
  if (!object || cast<NSNull>(object) || _level > kDeepest) return;
  if (auto* text = cast<NSString>(object)) return repeated.take(text) ? string(text) : void();
  if (auto* count = cast<NSNumber>(object)) return number(count);
  if (cast<NSDate>(object)) return date(object);
  if (auto* bytes = cast<NSData>(object))
    return repeated.take(bytes->length()) ? data(bytes->view()) : void();
  if (auto* list = cast<NSArray>(object)) return array(list, repeated);
  if (auto* entries = cast<NSDictionary>(object)) return dictionary(entries, repeated);
  string(descriptionOf(object));
}

void PropertyListWriter::value(NSObject* object) {
  RepeatedContent repeated;
  nested(object, repeated);
  _key = nullptr;
}

}  // namespace kbx
