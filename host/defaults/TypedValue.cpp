#include "host/defaults/TypedValue.h"

#include <algorithm>
#include <iterator>

#include "host/console/Command.h"
#include "host/defaults/ValueParser.h"
#include "host/defaults/ValueWords.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"
#include "platform/propertylists/PropertyListText.h"

namespace kbx {
namespace {

/// The words that are not used up yet.
class Words {
 public:
  explicit Words(std::span<const std::string> words) : _words(words) {}

  bool isEmpty() const { return _words.empty(); }
  const std::string& next(const char* missing) {
    if (_words.empty()) throw UsageError(missing);
    const std::string& word = _words.front();
    _words = _words.subspan(1);
    return word;
  }

 private:
  std::span<const std::string> _words;
};

Ref<NSString> stringOf(const std::string& word) {
  auto text = NSString::stringWithUTF8(word);
  if (!text) throw UsageError("the VALUE is not UTF-8: " + word);
  return text;
}

Ref<NSObject> textOf(const std::string& word) { return stringOf(word); }

Ref<NSObject> integerOf(const std::string& word) { return integerFromText(word); }

Ref<NSObject> realOf(const std::string& word) {
  auto real = realFromText(word);
  return real ? NSNumber::numberWithDouble(*real) : nullptr;
}

Ref<NSObject> booleanOf(const std::string& word) {
  std::string small = word;
  for (char& letter : small)
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  for (const char* yes : {"true", "yes", "1"})
    if (small == yes) return NSNumber::numberWithBool(true);
  for (const char* no : {"false", "no", "0"})
    if (small == no) return NSNumber::numberWithBool(false);
  return nullptr;
}

Ref<NSObject> dateOf(const std::string& word) { return dateOfText(word); }

Ref<NSObject> dataOf(const std::string& word) { return dataOfDigits(word); }

struct ScalarType {
  const char* flag;
  const char* meaning;
  Ref<NSObject> (*read)(const std::string& word);  // absent when the word has no such value
};

constexpr ScalarType kScalarTypes[] = {
    {"-string", "text", textOf},
    {"-data", "hexadecimal bytes", dataOf},
    {"-int", "64-bit integer", integerOf},
    {"-integer", "64-bit integer", integerOf},
    {"-float", "number", realOf},
    {"-real", "number", realOf},
    {"-bool", "truth value", booleanOf},
    {"-boolean", "truth value", booleanOf},
    {"-date", "date", dateOf},
};

const ScalarType* scalarType(const std::string& word) {
  const auto* found =
      std::ranges::find_if(kScalarTypes, [&](const auto& type) { return word == type.flag; });
  return found == std::end(kScalarTypes) ? nullptr : found;
}

/// A text without a type; a dash is left to types, but for numbers.
Ref<NSObject> untyped(const std::string& word) {
  if (word.starts_with('-') && !valueOfWord(word)) throw UsageError("unknown type " + word);
  try {
    return valueOfText(stringOf(word));
  } catch (const ValueFault& fault) {
    throw UsageError("the VALUE " + word + " is malformed: " + fault.what());
  }
}

Ref<NSObject> scalar(Words& words) {
  const std::string& word = words.next("a VALUE is missing");
  const ScalarType* type = scalarType(word);
  if (!type) return untyped(word);
  const std::string& text = words.next("a VALUE is missing");
  auto value = type->read(text);
  if (!value) throw UsageError(text + " is no " + type->meaning);
  return value;
}

Ref<NSObject> array(Words& words) {
  NSArray::Elements elements;
  while (!words.isEmpty()) elements.push_back(scalar(words));
  return NSArray::arrayWithElements(std::move(elements));
}

Ref<NSObject> dictionary(Words& words) {
  auto entries = NSMutableDictionary::dictionary();
  while (!words.isEmpty()) {
    auto key = stringOf(words.next("a key is missing"));
    entries->setObjectForKey(scalar(words), key);
  }
  return entries->copy();
}

}  // namespace

bool isValueType(const std::string& word) {
  return word == "-array" || word == "-dict" || scalarType(word);
}

Ref<NSObject> typedValue(std::span<const std::string> words) {
  Words rest(words);
  const bool isArray = !words.empty() && words[0] == "-array";
  const bool isDictionary = !words.empty() && words[0] == "-dict";
  if (isArray || isDictionary) rest.next("");
  if (isArray) return array(rest);
  if (isDictionary) return dictionary(rest);
  auto value = scalar(rest);
  if (!rest.isEmpty()) throw UsageError("a word too many: " + rest.next(""));
  return value;
}

}  // namespace kbx
