// HTMLOpenElements: the elements that are open at a place in a document, and what stops an end tag.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/html/HTMLTags.h"
#include "platform/markup/XMLTree.h"
#include "platform/objects/SeededHash.h"

namespace kbx {

/// In which vocabulary an element is.
enum class HTMLVocabulary : std::uint8_t { HTML, SVG, MathML };

/// A stack whose questions are all answered at once: with each element stand the places of the
/// nearest elements that end what reaches outwards, and with each tag that of its innermost open
/// element. So no tag makes anybody search.
///
/// Place is where in a tree an element stands.
template <class Place>
class HTMLOpenElements {
 public:
  /// The place of an element in the stack, which is its depth in the document; 0 for none.
  using Index = std::uint16_t;
  static constexpr Index kNone = 0;
  static constexpr Index kBody = 2;

  struct Element {
    Place place{};
    HTMLTag tag = HTMLTag::Unknown;
    HTMLVocabulary vocabulary = HTMLVocabulary::HTML;
    bool isIntegrationPoint = false;  // HTML may stand in this element of another vocabulary
    bool preserves = false;           // its white space
    Index before = kNone;             // the open element of the same tag around this one

    // The nearest elements, this one counted, that stop an inline end tag; any end tag; the end tag
    // of a list item; a list item from ending one outside; the same of table parts; and everything.
    Index block = kNone, scope = kNone, itemScope = kNone, items = kNone, table = kNone,
          wall = kNone;
  };

  HTMLOpenElements(Place html, Place body)
      : _lastOpen(static_cast<std::size_t>(HTMLTag::KnownCount), kNone) {
    _elements.reserve(64);
    _elements.push_back({});
    push(html, HTMLTag::Html, HTMLVocabulary::HTML);
    push(body, HTMLTag::Body, HTMLVocabulary::HTML);
    Element& last = _elements.back();
    last.block = last.scope = last.itemScope = last.items = last.table = last.wall = kBody;
  }

  const Element& top() const { return _elements.back(); }
  Index topIndex() const { return static_cast<Index>(_elements.size() - 1); }
  bool isFull() const { return topIndex() >= kDeepestElement; }
  bool isForeign() const {
    return top().vocabulary != HTMLVocabulary::HTML && !top().isIntegrationPoint;
  }
  /// The innermost open element of the tag.
  Index lastOpen(HTMLTag tag) const { return _lastOpen[static_cast<std::size_t>(tag)]; }

  void push(Place place, HTMLTag tag, HTMLVocabulary vocabulary) {
    Element element = top();
    element.place = place;
    element.tag = tag;
    element.vocabulary = vocabulary;
    element.isIntegrationPoint = false;
    element.before = lastOpen(tag);
    const auto index = static_cast<Index>(_elements.size());
    if (vocabulary == HTMLVocabulary::HTML) setBarriers(element, infoOf(tag), index);
    _lastOpen[static_cast<std::size_t>(tag)] = index;
    _elements.push_back(element);
  }

  /// Lets HTML stand in the innermost element.
  void makeIntegrationPoint() {
    Element& last = _elements.back();
    last.isIntegrationPoint = true;
    last.block = last.scope = last.items = topIndex();
  }

  Element pop() {
    const Element element = top();
    _elements.pop_back();
    _lastOpen[static_cast<std::size_t>(element.tag)] = element.before;
    return element;
  }

  /// What the end tag of an element cannot reach beyond.
  Index barrierOfEnd(HTMLTag tag) const {
    const HTMLTagInfo& info = infoOf(tag);
    // An element's own barrier does not keep its end tag out.
    const Index self = lastOpen(tag);
    const auto outside = [&](Index barrier) {
      return barrier == self && self > kBody ? static_cast<Index>(barrier - 1) : barrier;
    };
    if (tag == HTMLTag::Noframes || tag == HTMLTag::Table) return outside(top().wall);
    switch (info.action) {
      case HTMLAction::Cell:
      case HTMLAction::Row:
      case HTMLAction::Section:
        return top().table;
      case HTMLAction::Item:
      case HTMLAction::Definition:
        return top().itemScope;
      default:
        return outside(info.has(kBlock) || info.has(kSpecial) ? top().scope : top().block);
    }
  }

  /// The number of an element that HTML does not know.
  HTMLTag tagOfName(std::string_view name) {
    const auto [place, isNew] =
        _names.try_emplace(lowered(name), static_cast<HTMLTag>(_lastOpen.size()));
    if (isNew) _lastOpen.push_back(kNone);
    return place->second;
  }
  /// The same, Unknown for one that has not been open yet.
  HTMLTag knownTagOfName(std::string_view name) const {
    if (_names.empty()) return HTMLTag::Unknown;
    const auto found = _names.find(lowered(name));
    return found == _names.end() ? HTMLTag::Unknown : found->second;
  }

 private:
  static void setBarriers(Element& element, const HTMLTagInfo& info, Index index) {
    element.preserves |= info.has(kPreserves);
    const bool isSpecial = info.has(kBlock) || info.has(kSpecial);
    if (isSpecial) element.block = index;
    if (isSpecial && !info.has(kIsTransparentToItems)) element.items = index;
    if (info.has(kScope)) element.scope = index;
    if (info.has(kScope) || info.has(kItemScope)) element.itemScope = index;
    if (info.has(kTableScope)) element.table = index;
    if (info.has(kWall)) element.wall = index;
  }

  static std::string lowered(std::string_view name) {
    std::string lower(name);
    for (char& c : lower) c = asciiLower(c);
    return lower;
  }

  std::vector<Element> _elements;  // from html inwards, behind one that is none
  std::vector<Index> _lastOpen;    // by tag
  std::unordered_map<std::string, HTMLTag, SeededHash> _names;
};

}  // namespace kbx
