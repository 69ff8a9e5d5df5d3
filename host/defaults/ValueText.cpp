#include "host/defaults/ValueText.h"

#include <algorithm>
#include <string>

#include "host/console/Escaping.h"
#include "host/defaults/ValueParser.h"
#include "host/defaults/ValueWords.h"
#include "host/results/Attributes.h"
#include "host/results/RepeatedContent.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDictionary.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

constexpr std::size_t kIndent = 4;
constexpr std::size_t kDeepest = 512;  // as in property lists
constexpr SpecialCharacters kSpecialInQuotes("\"\\");
constexpr const char* kCut = "...";

/// A dash in front is left to options.
bool startsWithDash(NSString* text) {
  return text->length() > 0 && text->characterAtIndex(0) == '-';
}

/// Whether a string is one word, which is taken for nothing else.
bool isWord(NSString* text) {
  if (text->length() == 0 || startsWithDash(text)) return false;
  const bool isWhole =
      text->visitUnits([](auto units) { return std::ranges::all_of(units, isWordUnit); });
  return isWhole && !valueOfWord(text->lossyUTF8());
}

/// Whether a string that stands alone is taken for itself, and can be shown as it is.
bool isPlain(NSString* text) {
  if (text->length() == 0 || startsWithDash(text) || !text->UTF8String()) return false;
  const bool isSafe =
      text->visitUnits([](auto units) { return std::ranges::none_of(units, isUnsafeUnit); });
  if (!isSafe) return false;
  try {
    return isEqual(valueOfText(text), text);
  } catch (const ValueFault&) {
    return false;
  }
}

class ValueText {
 public:
  explicit ValueText(Output& output) : _output(output) {}

  void value(NSObject* value, std::size_t level);

 private:
  void string(NSString* text);
  void quoted(NSString* text);
  void data(NSData* bytes);
  void array(NSArray* array, std::size_t level);
  void dictionary(NSDictionary* dictionary, std::size_t level);
  void newLine(std::size_t level) {
    _output.write('\n');
    _output.writeBlanks(kIndent * level);
  }

  bool enter(const NSObject* collection, std::size_t count, std::size_t level) {
    return level < kDeepest && _repeated.enter(collection, count, kIndent * (level + 1));
  }

  Output& _output;
  RepeatedContent _repeated;
};

/// level  how many arrays and dictionaries are open
void ValueText::value(NSObject* value, std::size_t level) {
  if (auto* text = cast<NSString>(value))
    return _repeated.take(text) ? string(text) : _output.write(kCut);
  if (auto* number = cast<NSNumber>(value)) return _output.write(wordOfNumber(number));
  if (auto* date = cast<NSDate>(value)) return _output.write(wordOfDate(date));
  if (auto* bytes = cast<NSData>(value))
    return _repeated.take(bytes->length()) ? data(bytes) : _output.write(kCut);
  if (auto* list = cast<NSArray>(value)) return array(list, level);
  if (auto* entries = cast<NSDictionary>(value)) return dictionary(entries, level);
  quoted(descriptionOf(value));  // no property list has it
}

void ValueText::string(NSString* text) {
  if (isWord(text))
    _output.write(text->lossyUTF8());
  else
    quoted(text);
}

void ValueText::quoted(NSString* text) {
  _output.write('"');
  writeUTF8(_output, text, kSpecialInQuotes, [this](char16_t unit, char16_t) {
    if (unit != '"' && unit != '\\') return writeUnitEscape(_output, unit);
    _output.write('\\');
    _output.write(static_cast<char>(unit));
  });
  _output.write('"');
}

void ValueText::data(NSData* bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  _output.write('<');
  for (char byte : bytes->view()) {
    const auto value = static_cast<unsigned char>(byte);
    _output.write(kDigits[value >> 4]);
    _output.write(kDigits[value & 0xF]);
  }
  _output.write('>');
}

void ValueText::array(NSArray* array, std::size_t level) {
  if (array->count() == 0) return _output.write("()");
  if (!enter(array, array->count(), level)) return _output.write(kCut);
  _output.write('(');
  bool isFirst = true;
  for (const auto& element : *array) {
    if (!isFirst) _output.write(',');
    newLine(level + 1);
    value(element, level + 1);
    isFirst = false;
  }
  newLine(level);
  _output.write(')');
  _repeated.leave();
}

void ValueText::dictionary(NSDictionary* dictionary, std::size_t level) {
  if (dictionary->count() == 0) return _output.write("{}");
  if (!enter(dictionary, dictionary->count(), level)) return _output.write(kCut);
  _output.write('{');
  for (const auto& [name, object] : sortedAttributes(dictionary)) {
    newLine(level + 1);
    string(name);
    _output.write(" = ");
    value(object, level + 1);
    _output.write(';');
  }
  newLine(level);
  _output.write('}');
  _repeated.leave();
}

}  // namespace

void writeValueText(Output& output, NSObject* value) {
  auto* text = cast<NSString>(value);
  if (text && isPlain(text)) return output.write(*text->UTF8String());
  ValueText(output).value(value, 0);
}

}  // namespace kbx
