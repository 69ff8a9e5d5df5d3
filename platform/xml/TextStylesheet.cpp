#include "platform/xml/TextStylesheet.h"

#include <algorithm>

#include "platform/markup/Characters.h"
#include "platform/markup/GrowingBytes.h"
#include "platform/markup/MarkupText.h"
#include "platform/markup/XMLTreeHandler.h"

namespace kbx {
namespace {

constexpr std::string_view kXSLTNamespace = "http://www.w3.org/1999/XSL/Transform";

bool isBlank(const XMLNode& node) {
  return node.kind == NSXMLTextKind &&
         std::all_of(node.text.begin(), node.text.end(), isMarkupSpace);
}

/// Whether the element has this attribute and no other.
bool hasOnly(const XMLNode& element, std::string_view name, std::string_view value) {
  return element.attributeCount == 1 && element.attributes[0].name.qualified == name &&
         element.attributes[0].value == value;
}

std::optional<std::string_view> namespaceOf(std::string_view prefix, const XMLNode* element) {
  for (; element; element = element->parent)
    for (std::uint32_t i = 0; i < element->declarationCount; ++i)
      if (element->declarations[i].prefix == prefix) return element->declarations[i].uri;
  return std::nullopt;
}

bool isPlainName(std::string_view name) {
  return !name.empty() && isASCIILetter(name.front()) &&
         std::all_of(name.begin(), name.end(), isASCIIAlphanumeric);
}

/// The fixed text that a template holds; absent when it holds anything else.
std::optional<std::string> fixedText(const XMLNode& element) {
  std::string text;
  for (const XMLNode* child = element.firstChild; child; child = child->next) {
    if (isBlank(*child) || child->kind == NSXMLCommentKind) continue;
    if (!child->isElement(kXSLTNamespace, "text") || child->attributeCount > 0) return std::nullopt;
    for (const XMLNode* part = child->firstChild; part; part = part->next) {
      if (part->kind != NSXMLTextKind) return std::nullopt;
      text += part->text;
    }
  }
  return text;
}

}  // namespace

bool TextStylesheet::takeOutput(const XMLNode& element) {
  return hasOnly(element, "method", "text") && !element.firstChild;
}

bool TextStylesheet::takeTemplate(const XMLNode& element) {
  if (element.attributeCount != 1 || element.attributes[0].name.qualified != "match") return false;
  const std::string_view match = element.attributes[0].value;
  const std::size_t colon = std::min(match.find(':'), match.size());
  const std::string_view prefix = match.substr(0, colon);
  const std::string_view local = match.substr(std::min(colon + 1, match.size()));
  if (!isPlainName(prefix) || !isPlainName(local)) return false;
  const auto uri = namespaceOf(prefix, &element);
  auto text = fixedText(element);
  if (!uri || !text || ruleFor({local, *uri, 0})) return false;
  _rules.push_back({std::string(*uri), std::string(local), std::move(*text)});
  return true;
}

std::optional<TextStylesheet> TextStylesheet::recognise(NSString* xslt) {
  const auto bytes = xslt ? xslt->UTF8Data() : nullptr;
  if (!bytes) return std::nullopt;
  const MarkupText markup = markupText(bytes);
  XMLTree tree;
  XMLTreeHandler handler(tree, markup.text, false);
  if (XMLReader(markup.text, tree.arena, handler).read() != XMLReader::Outcome::Document)
    return std::nullopt;
  const XMLNode* const root = tree.root();
  if (!root->isElement(kXSLTNamespace, "stylesheet") || !hasOnly(*root, "version", "1.0"))
    return std::nullopt;
  TextStylesheet stylesheet;
  bool isText = false;
  for (const XMLNode* child = root->firstChild; child; child = child->next) {
    if (isBlank(*child) || child->kind == NSXMLCommentKind) continue;
    const bool isOutput = child->isElement(kXSLTNamespace, "output");
    if (isOutput
            ? !stylesheet.takeOutput(*child)
            : !child->isElement(kXSLTNamespace, "template") || !stylesheet.takeTemplate(*child))
      return std::nullopt;
    isText |= isOutput;
  }
  return isText ? std::optional(std::move(stylesheet)) : std::nullopt;
}

const TextStylesheet::Rule* TextStylesheet::ruleFor(const XMLName& name) const {
  for (const Rule& rule : _rules)
    if (name.is(rule.uri, rule.local)) return &rule;
  return nullptr;
}

Ref<NSData> TextStylesheet::apply(const XMLTree& document) const {
  GrowingBytes text;
  for (XMLNode* node = document.document; node;) {
    const Rule* const rule = node->kind == NSXMLElementKind ? ruleFor(node->name) : nullptr;
    if (rule) text.append(rule->text);
    if (node->kind == NSXMLTextKind) text.append(node->text);
    node = rule ? nextBehind(node, document.document) : nextInDocument(node, document.document);
  }
  return text.take();
}

}  // namespace kbx
