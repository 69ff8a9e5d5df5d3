#include "host/defaults/ValueParser.h"

#include <string>

#include "host/defaults/ValueWords.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"
#include "platform/propertylists/NSPropertyListSerialization.h"

namespace kbx {
namespace {

constexpr std::size_t kDeepest = 512;  // containers, as in every property list

bool isBlank(char16_t unit) { return unit == ' ' || (unit >= '\t' && unit <= '\r'); }

int digitOf(char16_t unit) {
  if (unit >= '0' && unit <= '9') return unit - '0';
  if (unit >= 'a' && unit <= 'f') return unit - 'a' + 10;
  if (unit >= 'A' && unit <= 'F') return unit - 'A' + 10;
  return -1;
}

/// The word as bytes; its units are ASCII.
std::string bytesOf(std::u16string_view word) {
  std::string bytes;
  for (char16_t unit : word) bytes += static_cast<char>(unit);
  return bytes;
}

class Parser {
 public:
  explicit Parser(std::u16string_view text) : _text(text) {}

  /// The one value that the text consists of.
  Ref<NSObject> parse() {
    auto found = value(0);
    if (!isAtEnd()) fail("something follows the end of the list");
    return found;
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw ValueFault(what + " at character " + std::to_string(_at + 1));
  }
  bool isAtEnd() {
    while (_at < _text.size() && isBlank(_text[_at])) ++_at;
    return _at == _text.size();
  }
  /// Whether the next unit is this one, which is then passed.
  bool take(char16_t unit) {
    if (isAtEnd() || _text[_at] != unit) return false;
    ++_at;
    return true;
  }
  void checkLevel(std::size_t level) const {
    if (level >= kDeepest) fail("more than 512 levels");
  }
  void require(char unit) {
    if (!take(static_cast<char16_t>(unit))) fail(std::string("a ") + unit + " is missing");
  }

  /// level  how many arrays and dictionaries are open around it
  Ref<NSObject> value(std::size_t level);
  Ref<NSObject> array(std::size_t level);
  Ref<NSObject> dictionary(std::size_t level);
  Ref<NSObject> data();
  Ref<NSString> quoted();
  char16_t escaped();
  char16_t escapedUnit();
  std::u16string_view word();

  const std::u16string_view _text;
  std::size_t _at = 0;
};

Ref<NSObject> Parser::value(std::size_t level) {
  if (take('{')) return dictionary(level);
  if (take('(')) return array(level);
  if (take('<')) return data();
  if (take('"')) return quoted();
  const auto bare = word();
  auto typed = valueOfWord(bytesOf(bare));
  return typed ? typed : NSString::stringWithUTF16(bare);
}

Ref<NSObject> Parser::array(std::size_t level) {
  checkLevel(level);
  NSArray::Elements elements;
  while (!take(')')) {
    elements.push_back(value(level + 1));
    if (take(',')) continue;
    require(')');
    break;
  }
  return NSArray::arrayWithElements(std::move(elements));
}

Ref<NSObject> Parser::dictionary(std::size_t level) {
  checkLevel(level);
  auto entries = NSMutableDictionary::dictionary();
  while (!take('}')) {
    Ref<NSString> key = take('"') ? quoted() : NSString::stringWithUTF16(word());
    require('=');
    entries->setObjectForKey(value(level + 1), key);
    if (take(';')) continue;
    require('}');
    break;
  }
  return entries->copy();
}

Ref<NSObject> Parser::data() {
  const std::size_t end = _text.find(u'>', _at);
  std::string digits;
  for (; _at < _text.size() && _at != end; ++_at) {
    const char16_t unit = _text[_at];
    if (!isBlank(unit) && digitOf(unit) < 0) fail("no hexadecimal digit");
    digits += static_cast<char>(unit);
  }
  require('>');
  auto bytes = dataOfDigits(digits);
  if (!bytes) fail("data with half a byte");
  return bytes;
}

/// What stands behind the opening mark.
Ref<NSString> Parser::quoted() {
  std::u16string units;
  while (_at < _text.size()) {
    const char16_t unit = _text[_at++];
    if (unit == '"') return NSString::stringByTakingUTF16(std::move(units));
    units += unit == '\\' ? escaped() : unit;
  }
  fail("a \" is missing");
}

char16_t Parser::escaped() {
  if (_at == _text.size()) fail("a \" is missing");
  switch (_text[_at++]) {
    case '"':
      return '"';
    case '\\':
      return '\\';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case 'u':
      return escapedUnit();
    default:
      fail("an unknown escape");
  }
}

char16_t Parser::escapedUnit() {
  int unit = 0;
  for (int i = 0; i < 4; ++i) {
    const int digit = _at < _text.size() ? digitOf(_text[_at]) : -1;
    if (digit < 0) fail("\\u without four hexadecimal digits");
    unit = unit << 4 | digit;
    ++_at;
  }
  return static_cast<char16_t>(unit);
}

std::u16string_view Parser::word() {
  if (isAtEnd()) fail("the list has no end");
  const std::size_t start = _at;
  while (_at < _text.size() && isWordUnit(_text[_at])) ++_at;
  if (_at == start) fail("a string that needs quotes");
  return _text.substr(start, _at - start);
}

std::u16string unitsOf(NSString* text) {
  return text->visitUnits([](auto units) { return std::u16string(units.begin(), units.end()); });
}

/// Data is told from XML by what stands between the first and the last mark.
bool isXML(std::u16string_view text) {
  const std::size_t start = text.find(u'<'), end = text.rfind(u'>');
  if (end == text.npos) return false;
  for (char16_t unit : text.substr(start + 1, end - start - 1))
    if (!isBlank(unit) && digitOf(unit) < 0) return true;
  return false;
}

Ref<NSObject> valueOfXML(NSString* text) {
  Ref<NSError> error;
  auto bytes = text->UTF8Data();
  if (!bytes) throw ValueFault("the text is no UTF-8");
  auto list = NSPropertyListSerialization::propertyListWithData(bytes, NSPropertyListImmutable,
                                                                nullptr, &error);
  if (!list) throw ValueFault(error->localizedDescription()->lossyUTF8());
  return list;
}

}  // namespace

Ref<NSObject> valueOfText(NSString* text) {
  const std::u16string units = unitsOf(text);
  std::size_t start = 0;
  while (start < units.size() && isBlank(units[start])) ++start;
  const char16_t first = start < units.size() ? units[start] : u'\0';
  if (first == '<' && isXML(units)) return valueOfXML(text);
  if (first == '{' || first == '(' || first == '"' || first == '<') return Parser(units).parse();
  auto typed = text->isASCII() ? valueOfWord(text->lossyUTF8()) : nullptr;
  return typed ? typed : Ref<NSObject>(text);
}

Ref<NSData> dataOfDigits(std::string_view text) {
  std::string bytes;
  int half = -1;
  for (char letter : text) {
    const auto unit = static_cast<unsigned char>(letter);
    const int digit = digitOf(unit);
    if (digit < 0 && !isBlank(unit)) return nullptr;
    if (digit < 0) continue;
    if (half >= 0) bytes += static_cast<char>(half << 4 | digit);
    half = half >= 0 ? -1 : digit;
  }
  return half < 0 ? NSData::dataWithBytes(bytes) : nullptr;
}

}  // namespace kbx
