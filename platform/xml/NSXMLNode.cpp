#include "platform/xml/NSXMLNode.h"

#include "platform/markup/XMLWriter.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/xml/NSXMLDocument.h"

namespace kbx {

KBX_CLASS(NSXMLNode)
KBX_CLASS(NSXMLElement)

Ref<NSXMLNode> NSXMLNode::object(XMLNode* node) const {
  if (!node) return nullptr;
  switch (node->kind) {
    case NSXMLElementKind:
      return Ref<NSXMLNode>::adopt(new NSXMLElement(_tree, node));
    case NSXMLDocumentKind:
      return NSXMLDocument::documentWithTree(_tree);
    default:
      return Ref<NSXMLNode>::adopt(new NSXMLNode(_tree, node));
  }
}

Ref<NSString> NSXMLNode::name() const {
  const auto text = _node->name.qualified;
  return text.empty() ? nullptr : NSString::stringWithUTF8(text);
}

Ref<NSString> NSXMLNode::localName() const {
  const auto text = _node->name.local();
  return text.empty() ? nullptr : NSString::stringWithUTF8(text);
}

Ref<NSString> NSXMLNode::URI() const {
  const auto text = _node->name.uri;
  return text.empty() ? nullptr : NSString::stringWithUTF8(text);
}

Ref<NSString> NSXMLNode::stringValue() const {
  if (_node->kind != NSXMLElementKind && _node->kind != NSXMLDocumentKind)
    return NSString::stringWithUTF8(_node->text);
  std::string text;
  for (XMLNode* node = _node; node; node = nextInDocument(node, _node))
    if (node->kind == NSXMLTextKind) text += node->text;
  return NSString::stringByTakingUTF8(std::move(text));
}

Ref<NSXMLNode> NSXMLNode::parent() const { return object(_node->parent); }

Ref<NSArray> NSXMLNode::children() const {
  if (!_node->firstChild) return nullptr;
  NSArray::Elements elements;
  elements.reserve(_node->childCount);
  for (XMLNode* child = _node->firstChild; child; child = child->next)
    elements.push_back(object(child));
  return NSArray::arrayWithElements(std::move(elements));
}

std::size_t NSXMLNode::index() const noexcept {
  std::size_t index = 0;
  for (const XMLNode* node = _node->previous; node; node = node->previous) ++index;
  return index;
}

Ref<NSString> NSXMLNode::XMLStringWithOptions(std::uint64_t options) const {
  return NSString::stringWithUTF8(xmlOfNode(_node, (options & NSXMLNodePrettyPrint) != 0));
}

Ref<NSString> NSXMLNode::description() const { return XMLStringWithOptions(NSXMLNodeOptionsNone); }

bool NSXMLNode::isEqual(NSObject* other) const {
  auto* const node = cast<NSXMLNode>(other);
  return node && node->_node == _node;
}

std::size_t NSXMLNode::hash() const { return reinterpret_cast<std::uintptr_t>(_node) >> 4; }

Ref<NSString> NSXMLElement::attributeValueForName(NSString* name) const {
  const std::string wanted = name ? name->lossyUTF8() : std::string();
  for (std::uint32_t i = 0; i < _node->attributeCount; ++i)
    if (_node->attributes[i].name.qualified == wanted)
      return NSString::stringWithUTF8(_node->attributes[i].value);
  return nullptr;
}

void NSXMLElement::removeChildAtIndex(std::size_t index) {
  if (index >= _node->childCount)
    raiseRange("-[NSXMLElement removeChildAtIndex:]: index beyond the last child");
  XMLNode* child = _node->firstChild;
  while (index-- > 0) child = child->next;
  _node->remove(child);
}

}  // namespace kbx
