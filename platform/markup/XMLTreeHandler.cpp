#include "platform/markup/XMLTreeHandler.h"

#include <algorithm>

namespace kbx {
namespace {

template <class T>
const T* copied(std::span<const T> items, Arena& arena) {
  if (items.empty()) return nullptr;
  T* const own = arena.makeArray<T>(items.size());
  std::copy(items.begin(), items.end(), own);
  return own;
}

}  // namespace

XMLNode* XMLTreeHandler::appendNode(NSXMLNodeKind kind, std::string_view text) {
  XMLNode* const node = _tree.makeNode(kind);
  node->text = text;
  _place->append(node);
  return node;
}

bool XMLTreeHandler::startElement(const XMLName& name, std::span<const XMLAttribute> attributes,
                                  std::span<const XMLNamespaceDeclaration> declarations) {
  if (_isXHTMLOnly) {
    if (_place == _tree.document && !isXHTMLRoot(name)) return false;
    _visibility.start(name);
    if (isLeftOut()) return true;
  }
  XMLNode* const element = appendNode(NSXMLElementKind, {});
  element->name = name;
  element->attributes = copied(attributes, _tree.arena);
  element->attributeCount = static_cast<std::uint32_t>(attributes.size());
  element->declarations = copied(declarations, _tree.arena);
  element->declarationCount = static_cast<std::uint32_t>(declarations.size());
  _place = element;
  return true;
}

void XMLTreeHandler::endElement() {
  if (!isLeftOut()) _place = _place->parent;
  if (_isXHTMLOnly) _visibility.end();
}

void XMLTreeHandler::comment(std::string_view text) {
  if (!_visibility.isMisplaced()) appendNode(NSXMLCommentKind, text);
}

void XMLTreeHandler::instruction(std::string_view target, std::string_view data) {
  if (_visibility.isMisplaced()) return;
  appendNode(NSXMLProcessingInstructionKind, data)->name = {target, {}, 0};
}

}  // namespace kbx
