#include "host/results/AttributeText.h"

#include <algorithm>
#include <string>
#include <vector>

#include "host/console/Escaping.h"
#include "host/results/Attributes.h"
#include "host/results/RepeatedContent.h"
#include "platform/objects/NSArray.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

constexpr std::size_t kIndent = 4;
constexpr std::size_t kDeepest = 64;
constexpr SpecialCharacters kSpecialInQuotes("\"\\");

class AttributeText {
 public:
  explicit AttributeText(Output& output) : _output(output) {}

  void write(NSDictionary* attributes);

 private:
  void value(NSObject* value, std::size_t level, std::size_t column);
  void quoted(NSString* text, std::size_t column);
  void array(NSArray* array, std::size_t level);
  void dictionary(NSDictionary* dictionary, std::size_t level);

  Output& _output;
  RepeatedContent _repeated;
};

struct NamedValue {
  std::string name;  // as it is printed
  Ref<NSObject> value;
};

std::vector<NamedValue> namedValues(NSDictionary* dictionary) {
  std::vector<NamedValue> named;
  for (const auto& [name, value] : sortedAttributes(dictionary)) {
    StringOutput shown;
    writeOnOneLine(shown, name);
    named.push_back({shown.text(), value});
  }
  return named;
}

void AttributeText::write(NSDictionary* attributes) {
  const auto named = namedValues(attributes);
  std::size_t width = 0;
  for (const auto& each : named) width = std::max(width, each.name.size());
  for (const auto& each : named) {
    _output.write(each.name);
    _output.writeBlanks(width - each.name.size());
    _output.write(" = ");
    value(each.value, 0, width + 3);
    _output.write('\n');
  }
}

/// level   how many arrays and dictionaries are open
/// column  where the value begins
void AttributeText::value(NSObject* value, std::size_t level, std::size_t column) {
  if (auto* text = cast<NSString>(value))
    return _repeated.take(text) ? quoted(text, column) : _output.write("...");
  auto* list = cast<NSArray>(value);
  auto* entries = cast<NSDictionary>(value);
  if (!list && !entries) return writeOnOneLine(_output, descriptionOf(value));
  if (level > kDeepest) return _output.write("...");
  if (list) return array(list, level);
  dictionary(entries, level);
}

void AttributeText::quoted(NSString* text, std::size_t column) {
  _output.write('"');
  writeUTF8(_output, text, kSpecialInQuotes, [&](char16_t unit, char16_t next) {
    if (unit == '\r' && next == '\n') return;  // one line break, however it is written
    if (unit == '\n') {
      _output.write('\n');
      _output.writeBlanks(column + 1);
    } else if (unit == '"' || unit == '\\') {
      _output.write('\\');
      _output.write(static_cast<char>(unit));
    } else {
      writeUnitEscape(_output, unit);
    }
  });
  _output.write('"');
}

void AttributeText::array(NSArray* array, std::size_t level) {
  const std::size_t indent = kIndent * (level + 1);
  if (!_repeated.enter(array, array->count(), indent)) return _output.write("...");
  _output.write('(');
  bool isFirst = true;
  for (const auto& element : *array) {
    _output.write(isFirst ? "\n" : ",\n");
    _output.writeBlanks(indent);
    value(element, level + 1, indent);
    isFirst = false;
  }
  _output.write('\n');
  _output.writeBlanks(kIndent * level);
  _output.write(')');
  _repeated.leave();
}

void AttributeText::dictionary(NSDictionary* dictionary, std::size_t level) {
  const std::size_t indent = kIndent * (level + 1);
  if (!_repeated.enter(dictionary, dictionary->count(), indent)) return _output.write("...");
  _output.write("{\n");
  for (const auto& [name, object] : namedValues(dictionary)) {
    _output.writeBlanks(indent);
    _output.write(name);
    _output.write(" = ");
    value(object, level + 1, indent + name.size() + 3);
    _output.write(";\n");
  }
  _output.writeBlanks(kIndent * level);
  _output.write('}');
  _repeated.leave();
}

}  // namespace

void writeAttributeText(Output& output, NSDictionary* attributes) {
  AttributeText(output).write(attributes);
}

}  // namespace kbx
