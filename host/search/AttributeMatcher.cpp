#include "host/search/AttributeMatcher.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>
#include <utility>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNumber.h"

namespace kbx {
namespace {

using Kind = AttributeValue::Kind;

bool isOneOf(std::string text, std::initializer_list<std::string_view> words) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  return std::ranges::find(words, text) != words.end();
}

/// The number that a value is, or that its text says.
std::optional<double> numberOf(const AttributeValue& value) {
  if (value.kind != Kind::Text) return value.number;
  if (isOneOf(value.text, {"true", "yes"})) return 1;
  if (isOneOf(value.text, {"false", "no"})) return 0;
  char* end = nullptr;
  const double number = std::strtod(value.text.c_str(), &end);
  const bool isWhole = !value.text.empty() && *end == 0;
  return isWhole ? std::optional(number) : std::nullopt;
}

/// The content of a body is compared as the index does it, whatever the modifiers are.
PatternOptions optionsOf(const AttributeTest& test) {
  if (test.name == "kMDItemTextContent") return {true, true, true};
  return {test.value.ignoresCase, test.value.ignoresMarks, test.value.isByWord};
}

}  // namespace

AttributeMatcher::AttributeMatcher(AttributeTest test)
    : _test(std::move(test)),
      _pattern(_test.value.text, optionsOf(_test)),
      _number(numberOf(_test.value)),
      _upper(numberOf(_test.upper)) {}

bool AttributeMatcher::matches(NSDictionary* attributes) const {
  if (_test.name != "*") {
    const auto name = NSString::stringWithLossyUTF8(_test.name);
    return matchesValue(attributes->objectForKey(name));
  }
  return std::ranges::any_of(*attributes,
                             [this](const auto& entry) { return matchesValue(entry.value); });
}

bool AttributeMatcher::matchesValue(NSObject* value) const {
  if (!value) return false;
  const bool asksWhetherThere = _test.comparison == Comparison::Equal &&
                                _test.value.kind == Kind::Text && _test.value.text == "*";
  if (asksWhetherThere) return true;
  auto* list = cast<NSArray>(value);
  if (!list) return matchesElement(value);
  return std::ranges::any_of(*list, [this](const auto& each) { return matchesElement(each); });
}

bool AttributeMatcher::matchesElement(NSObject* element) const {
  if (auto* text = cast<NSString>(element)) return comparesTexts() && _pattern.matches(text);
  if (auto* number = cast<NSNumber>(element))
    return _test.value.kind != Kind::Time && matchesNumber(number->doubleValue());
  auto* date = cast<NSDate>(element);
  if (!date) return false;
  const bool isTime = _test.value.kind == Kind::Time;
  return matchesNumber(isTime ? date->timeIntervalSince1970()
                              : date->timeIntervalSinceReferenceDate());
}

bool AttributeMatcher::comparesTexts() const {
  return _test.comparison == Comparison::Equal && _test.value.kind != Kind::Time;
}

bool AttributeMatcher::matchesText(std::string_view utf8) const {
  return comparesTexts() && _pattern.matches(utf8);
}

bool AttributeMatcher::matchesNumber(double number) const {
  if (!_number) return false;
  switch (_test.comparison) {
    case Comparison::Equal:
      return number == *_number;
    case Comparison::Less:
      return number < *_number;
    case Comparison::LessOrEqual:
      return number <= *_number;
    case Comparison::Greater:
      return number > *_number;
    case Comparison::GreaterOrEqual:
      return number >= *_number;
    case Comparison::InRange:
      return _upper && number >= *_number && number <= *_upper;
  }
  return false;
}

std::unique_ptr<AttributeMatcher> makeAttributeMatcher(const AttributeTest& test) {
  return std::make_unique<AttributeMatcher>(test);
}

}  // namespace kbx
