// NSXMLNode and NSXMLElement: the nodes of an XML document.
#pragma once

#include <memory>

#include "platform/markup/XMLTree.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSObject.h"
#include "platform/objects/NSString.h"

namespace kbx {

class NSXMLElement;

/// Options of reading and writing documents.
enum NSXMLNodeOptions : std::uint64_t {
  NSXMLNodeOptionsNone = 0,
  NSXMLDocumentTidyHTML = 1 << 9,
  NSXMLDocumentTidyXML = 1 << 10,
  NSXMLNodePrettyPrint = 1 << 17,
};

/// A place in a document. Every question about the same place makes a new object; such objects are
/// equal. A node keeps its document's memory, also when it has been removed. May be shared between
/// threads while nobody changes the document.
class KBX_PLATFORM NSXMLNode : public NSObject {
  KBX_OBJECT(NSXMLNode, NSObject)
 public:
  NSXMLNodeKind kind() const noexcept { return _node->kind; }
  /// The name of an element with its prefix, the target of an instruction; absent for others.
  Ref<NSString> name() const;
  Ref<NSString> localName() const;
  /// The namespace of an element; absent for none and for other nodes.
  Ref<NSString> URI() const;
  /// The text of a text, comment or instruction; of others, all text inside.
  Ref<NSString> stringValue() const;

  /// Absent for the document and for what was removed.
  Ref<NSXMLNode> parent() const;
  /// In their order; a list of their own, which later changes do not reach. Absent without any.
  Ref<NSArray> children() const;
  std::size_t childCount() const noexcept { return _node->childCount; }
  /// How many nodes stand in front of this one in its parent.
  std::size_t index() const noexcept;

  /// The XML of the node and what is inside. (XMLStringWithOptions:)
  ///
  /// options  NSXMLNodePrettyPrint puts elements without text of their own on lines of their own;
  ///          other options change nothing
  Ref<NSString> XMLStringWithOptions(std::uint64_t options) const;

  Ref<NSString> description() const override;
  bool isEqual(NSObject* other) const override;
  std::size_t hash() const override;

 protected:
  NSXMLNode(std::shared_ptr<XMLTree> tree, XMLNode* node) noexcept
      : _tree(std::move(tree)), _node(node) {}
  ~NSXMLNode() override = default;

  Ref<NSXMLNode> object(XMLNode* node) const;

  const std::shared_ptr<XMLTree> _tree;
  XMLNode* const _node;
};

/// An element.
class KBX_PLATFORM NSXMLElement final : public NSXMLNode {
  KBX_OBJECT(NSXMLElement, NSXMLNode)
 public:
  /// The value of an attribute by its name as written; absent without one.
  Ref<NSString> attributeValueForName(NSString* name) const;
  /// Takes a child out of the document. Raises NSRangeException when there is none at the index.
  /// (removeChildAtIndex:)
  void removeChildAtIndex(std::size_t index);

 private:
  friend class NSXMLNode;
  NSXMLElement(std::shared_ptr<XMLTree> tree, XMLNode* node) noexcept
      : NSXMLNode(std::move(tree), node) {}
};

}  // namespace kbx
