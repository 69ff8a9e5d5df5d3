#include "platform/propertylists/XMLPropertyListTree.h"

#include <algorithm>
#include <utility>

#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/PropertyListText.h"
#include "platform/text/Base64.h"

namespace kbx {
namespace {

using Element = XMLPropertyListTree::Element;

struct Name {
  std::string_view text;
  Element element;
};

constexpr Name kNames[] = {
    {"plist", Element::Plist}, {"dict", Element::Dictionary}, {"array", Element::Array},
    {"key", Element::Key},     {"string", Element::String},   {"integer", Element::Integer},
    {"real", Element::Real},   {"true", Element::True},       {"false", Element::False},
    {"date", Element::Date},   {"data", Element::Data},
};

const Name* named(std::string_view text) {
  for (const auto& name : kNames)
    if (name.text == text) return &name;
  return nullptr;
}

std::string quoted(std::string_view text) {
  constexpr std::size_t kShown = 40;
  const bool isLong = text.size() > kShown;
  return "“" + std::string(text.substr(0, kShown)) + (isLong ? "…”" : "”");
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool holdsValues(Element element) { return element <= Element::Array; }

Ref<NSObject> dateOf(std::string_view text) {
  auto seconds = dateFromText(text);
  return seconds ? NSDate::dateWithTimeIntervalSinceReferenceDate(*seconds) : nullptr;
}

Ref<NSObject> dataOf(std::string_view text) {
  auto bytes = bytesFromBase64(text);
  return bytes ? NSData::dataWithBytes(*bytes) : nullptr;
}

Ref<NSObject> realOf(std::string_view text) {
  auto number = realFromText(text);
  return number ? NSNumber::numberWithDouble(*number) : nullptr;
}

/// The value of a leaf; absent when its text does not fit its element.
Ref<NSObject> leaf(Element element, std::string& text) {
  switch (element) {
    case Element::Integer:
      return integerFromText(text);
    case Element::Real:
      return realOf(text);
    case Element::True:
    case Element::False:
      return NSNumber::numberWithBool(element == Element::True);
    case Element::Date:
      return dateOf(text);
    case Element::Data:
      return dataOf(text);
    default:
      return NSString::stringByTakingUTF8(std::move(text));
  }
}

}  // namespace

XMLPropertyListTree::Fault XMLPropertyListTree::start(std::string_view text) {
  const Name* name = named(text);
  if (!name) return "the unknown element " + quoted(text);
  if (auto fault = name->element == Element::Plist ? startPlist() : faultOfPlace(name->element))
    return fault;
  _open.push_back(name->element);
  _text.clear();
  return startContainer(name->element);
}

XMLPropertyListTree::Fault XMLPropertyListTree::startPlist() {
  return _open.empty() ? Fault() : "an element “plist” inside another element";
}

/// What is wrong with an element that is no "plist" at this place.
XMLPropertyListTree::Fault XMLPropertyListTree::faultOfPlace(Element element) const {
  if (!_open.empty() && !holdsValues(_open.back())) return "an element inside a simple value";
  const bool isInDictionary = !_containers.empty() && _containers.back().entries;
  const bool isKeyOpen = isInDictionary && _containers.back().key;
  if (element == Element::Key) {
    if (!isInDictionary) return "a key outside a dictionary";
    return isKeyOpen ? Fault("a key without a value") : Fault();
  }
  if (isInDictionary && !isKeyOpen) return "a value without a key";
  return _containers.empty() && _root ? Fault("a second value") : Fault();
}

XMLPropertyListTree::Fault XMLPropertyListTree::startContainer(Element element) {
  if (element != Element::Dictionary && element != Element::Array) return std::nullopt;
  if (_containers.size() >= kDeepestPropertyList)
    return "more than " + std::to_string(kDeepestPropertyList) + " levels of containers";
  _containers.emplace_back();
  if (element == Element::Dictionary)
    _containers.back().entries = NSMutableDictionary::dictionary();
  return std::nullopt;
}

/// Whether the open element is one whose text counts.
bool XMLPropertyListTree::isInLeaf() const {
  return !_open.empty() && !holdsValues(_open.back()) && _open.back() != Element::True &&
         _open.back() != Element::False;
}

void XMLPropertyListTree::expectText(std::size_t length) {
  if (isInLeaf()) _text.reserve(_text.size() + length);
}

XMLPropertyListTree::Fault XMLPropertyListTree::text(std::string_view text) {
  if (isInLeaf())
    _text += text;
  else if (!std::ranges::all_of(text, isBlank))
    return "text where only elements may be: " + quoted(text);
  return std::nullopt;
}

XMLPropertyListTree::Fault XMLPropertyListTree::end() {
  const Element element = _open.back();
  _open.pop_back();
  if (element == Element::Plist) return _root ? Fault() : "an empty element “plist”";
  if (holdsValues(element)) return endContainer();
  return element == Element::Key ? endKey() : endLeaf(element);
}

XMLPropertyListTree::Fault XMLPropertyListTree::endContainer() {
  Container container = std::move(_containers.back());
  _containers.pop_back();
  if (container.key) return "a key without a value";
  return store(container.entries ? dictionaryThatMayChange(container.entries, _isMutable)
                                 : arrayThatMayChange(std::move(container.elements), _isMutable));
}

XMLPropertyListTree::Fault XMLPropertyListTree::endKey() {
  auto key = NSString::stringByTakingUTF8(std::move(_text));
  if (!key) return "a key that is no UTF-8";
  _containers.back().key = std::move(key);
  return std::nullopt;
}

XMLPropertyListTree::Fault XMLPropertyListTree::endLeaf(Element element) {
  if (auto value = leaf(element, _text)) return store(std::move(value));
  return "a value that is none of its kind: " + quoted(_text);
}

XMLPropertyListTree::Fault XMLPropertyListTree::store(Ref<NSObject> value) {
  if (_containers.empty()) {
    _root = std::move(value);
  } else if (auto& container = _containers.back(); container.entries) {
    container.entries->setObjectForKey(value, container.key);
    container.key = nullptr;
  } else {
    container.elements.push_back(std::move(value));
  }
  return std::nullopt;
}

}  // namespace kbx
