#include "platform/html/HTMLTreeSink.h"

#include <algorithm>
#include <string>

#include "platform/html/CharacterReferences.h"

namespace kbx {
namespace {

constexpr std::size_t kFewAttributes = 16;
constexpr std::string_view kXMLPrefix = "xml:";

bool isAttributeName(std::string_view lower) {
  if (lower == "xmlns") return false;
  if (lower.starts_with(kXMLPrefix)) lower.remove_prefix(kXMLPrefix.size());
  if (lower.empty() || !(isASCIILetter(lower.front()) || lower.front() == '_')) return false;
  return std::all_of(lower.begin(), lower.end(), [](char c) {
    return isASCIIAlphanumeric(c) || c == '-' || c == '_' || c == '.';
  });
}

std::string_view namespaceOf(HTMLVocabulary vocabulary) {
  switch (vocabulary) {
    case HTMLVocabulary::SVG:
      return kSVGNamespace;
    case HTMLVocabulary::MathML:
      return kMathMLNamespace;
    default:
      return kXHTMLNamespace;
  }
}

std::string_view withoutSpace(std::string_view text) {
  while (!text.empty() && isMarkupSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isMarkupSpace(text.back())) text.remove_suffix(1);
  return text;
}

/// Replaces the references of a text; answers the text itself when there is none.
std::string_view replaced(std::string_view text, bool isAttribute, Arena& arena) {
  if (text.find('&') == text.npos) return text;
  std::string result;
  while (!text.empty()) {
    const std::size_t stop = std::min(text.find('&'), text.size());
    result += text.substr(0, stop);
    text.remove_prefix(stop);
    if (text.empty()) break;
    const CharacterReference found = characterReference(text, isAttribute);
    result += found.length == 0 ? text.substr(0, 1) : found.text();
    text.remove_prefix(std::max<std::size_t>(found.length, 1));
  }
  return arena.copy(result);
}

std::string_view inSmallLetters(std::string_view name, Arena& arena) {
  const auto isCapital = [](char c) { return c != asciiLower(c); };
  if (std::none_of(name.begin(), name.end(), isCapital)) return name;
  char* const lower = arena.bytes(name.size());
  std::transform(name.begin(), name.end(), lower, asciiLower);
  return {lower, name.size()};
}

}  // namespace

void HTMLTreeAttributes::clear() {
  _attributes.clear();
  if (!_names.empty()) _names = {};  // clearing would take the time of the largest tag so far
}

void HTMLTreeAttributes::add(std::string_view name, std::string_view value) {
  const std::string_view lower = inSmallLetters(name, _arena);
  if (!isAttributeName(lower) || isKnown(lower)) return;
  XMLAttribute attribute{{lower, {}, 0}, replaced(value, true, _arena)};
  if (lower.starts_with(kXMLPrefix)) {
    attribute.name.uri = kXMLNamespace;
    attribute.name.prefixLength = kXMLPrefix.size() - 1;
  }
  _attributes.push_back(attribute);
}

bool HTMLTreeAttributes::isKnown(std::string_view name) {
  if (_attributes.size() < kFewAttributes)
    return std::any_of(_attributes.begin(), _attributes.end(),
                       [&](const auto& known) { return known.name.qualified == name; });
  if (_names.empty())
    for (const XMLAttribute& known : _attributes) _names.insert(known.name.qualified);
  return !_names.insert(name).second;
}

void HTMLTreeAttributes::giveTo(XMLNode& node) {
  if (_attributes.empty()) return;
  auto* const own = _arena.makeArray<XMLAttribute>(_attributes.size());
  std::copy(_attributes.begin(), _attributes.end(), own);
  node.attributes = own;
  node.attributeCount = static_cast<std::uint32_t>(_attributes.size());
}

HTMLTreeSink::HTMLTreeSink(XMLTree& tree, std::string_view source)
    : _tree(tree),
      _texts(tree, source),
      _attributes(tree.arena),
      _html(makeElement("html", kXHTMLNamespace)),
      _head(makeElement("head", kXHTMLNamespace)),
      _body(makeElement("body", kXHTMLNamespace)) {
  _tree.document->append(_html);
  _html->append(_head);
  _html->append(_body);
}

void HTMLTreeSink::finish() {
  if (!_hasTitle) _head->insertAfter(nullptr, makeElement("title", kXHTMLNamespace));
}

XMLNode* HTMLTreeSink::makeElement(std::string_view name, std::string_view uri) {
  XMLNode* const element = _tree.makeNode(NSXMLElementKind);
  element->name = {name, uri, 0};
  return element;
}

XMLNode* HTMLTreeSink::append(XMLNode* parent, const HTMLToken& token, HTMLVocabulary vocabulary) {
  const bool isKnown = token.tag != HTMLTag::Unknown;
  XMLNode* const element =
      makeElement(isKnown ? infoOf(token.tag).name : inSmallLetters(token.name, _tree.arena),
                  namespaceOf(vocabulary));
  _attributes.giveTo(*element);
  parent->append(element);
  _hasTitle |= token.tag == HTMLTag::Title && parent == _head;
  return element;
}

void HTMLTreeSink::rawText(XMLNode* element, std::string_view content, bool hasReferences) {
  if (content.empty()) return;
  XMLNode* const node = _tree.makeNode(NSXMLTextKind);
  node->text = hasReferences ? replaced(content, false, _tree.arena) : content;
  if (!node->text.empty()) element->append(node);
}

void HTMLTreeSink::comment(XMLNode* parent, std::string_view text) {
  XMLNode* const node = _tree.makeNode(NSXMLCommentKind);
  node->text = text;
  parent->append(node);
}

void HTMLTreeSink::doctype(std::string_view text) {
  XMLNode* const first = _tree.document->firstChild;
  if (first->kind == NSXMLDTDKind) return;
  XMLNode* const node = _tree.makeNode(NSXMLDTDKind);
  node->text = withoutSpace(text);
  _tree.document->insertAfter(nullptr, node);
}

void HTMLTreeSink::lines(XMLNode* parent, const Mark& mark, std::uint32_t count) {
  char* const feeds = _tree.arena.bytes(count);
  std::fill_n(feeds, count, '\n');
  const std::string_view piece{feeds, count};
  if (mark.parent == parent && mark.behind == parent->lastChild) return text(parent, piece);
  XMLNode* const node = _tree.makeNode(NSXMLTextKind);
  node->text = piece;
  mark.parent->insertAfter(mark.behind, node);
}

}  // namespace kbx
