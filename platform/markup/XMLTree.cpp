#include "platform/markup/XMLTree.h"

namespace kbx {

void XMLNode::insertAfter(XMLNode* place, XMLNode* child) {
  child->parent = this;
  child->previous = place;
  child->next = place ? place->next : firstChild;
  (place ? place->next : firstChild) = child;
  (child->next ? child->next->previous : lastChild) = child;
  ++childCount;
}

void XMLNode::remove(XMLNode* child) {
  (child->previous ? child->previous->next : firstChild) = child->next;
  (child->next ? child->next->previous : lastChild) = child->previous;
  child->parent = child->previous = child->next = nullptr;
  --childCount;
}

XMLNode* nextBehind(XMLNode* node, const XMLNode* root) {
  while (node != root) {
    if (node->next) return node->next;
    node = node->parent;
  }
  return nullptr;
}

XMLNode* nextInDocument(XMLNode* node, const XMLNode* root) {
  return node->firstChild ? node->firstChild : nextBehind(node, root);
}

XMLNode* XMLTree::root() const {
  for (XMLNode* node = document->firstChild; node; node = node->next)
    if (node->kind == NSXMLElementKind) return node;
  return nullptr;
}

}  // namespace kbx
