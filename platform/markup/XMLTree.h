// XMLTree: the nodes of a document, all in one arena.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/markup/Arena.h"
#include "platform/objects/NSObject.h"

namespace kbx {

inline constexpr std::string_view kXHTMLNamespace = "http://www.w3.org/1999/xhtml";
inline constexpr std::string_view kSVGNamespace = "http://www.w3.org/2000/svg";
inline constexpr std::string_view kMathMLNamespace = "http://www.w3.org/1998/Math/MathML";
inline constexpr std::string_view kXMLNamespace = "http://www.w3.org/XML/1998/namespace";
inline constexpr std::string_view kXMLNSNamespace = "http://www.w3.org/2000/xmlns/";

/// How deep elements may be nested, the root counted.
inline constexpr std::size_t kDeepestElement = 512;

/// The kinds of nodes, by the platform's numbers.
enum NSXMLNodeKind : std::uint64_t {
  NSXMLInvalidKind = 0,
  NSXMLDocumentKind = 1,
  NSXMLElementKind = 2,
  NSXMLAttributeKind = 3,
  NSXMLNamespaceKind = 4,
  NSXMLProcessingInstructionKind = 5,
  NSXMLCommentKind = 6,
  NSXMLTextKind = 7,
  NSXMLDTDKind = 8,
};

/// The name of an element or attribute, as written and by its meaning.
struct XMLName {
  std::string_view qualified;      // with its prefix
  std::string_view uri;            // the namespace; empty for none
  std::uint32_t prefixLength = 0;  // 0 without a prefix

  std::string_view prefix() const { return qualified.substr(0, prefixLength); }
  std::string_view local() const {
    return prefixLength == 0 ? qualified : qualified.substr(prefixLength + 1);
  }
  bool is(std::string_view wantedURI, std::string_view wantedLocal) const {
    return local() == wantedLocal && uri == wantedURI;
  }
};

struct XMLAttribute {
  XMLName name;
  std::string_view value;
};

/// The declaration of a prefix; an empty one is the default namespace's.
struct XMLNamespaceDeclaration {
  std::string_view prefix;
  std::string_view uri;
};

/// A node. Its texts are UTF-8 and lie in the tree's arena or in the tree's source.
struct XMLNode {
  XMLNode* parent = nullptr;
  XMLNode* previous = nullptr;
  XMLNode* next = nullptr;
  XMLNode* firstChild = nullptr;
  XMLNode* lastChild = nullptr;
  XMLName name;           // of an element; the target of an instruction
  std::string_view text;  // of a text, comment, instruction or document type
  const XMLAttribute* attributes = nullptr;
  const XMLNamespaceDeclaration* declarations = nullptr;
  std::uint32_t attributeCount = 0;
  std::uint32_t declarationCount = 0;
  std::uint32_t childCount = 0;
  NSXMLNodeKind kind = NSXMLInvalidKind;

  bool isElement(std::string_view uri, std::string_view local) const {
    return kind == NSXMLElementKind && name.is(uri, local);
  }

  void append(XMLNode* child) { insertAfter(lastChild, child); }
  /// `place` is a child, or nullptr for the front.
  void insertAfter(XMLNode* place, XMLNode* child);
  void remove(XMLNode* child);
};

/// The node behind `node` in the order of the document, within `root`; nullptr at the end.
/// Walks without recursion, so that depth costs no stack.
XMLNode* nextInDocument(XMLNode* node, const XMLNode* root);
/// The same, leaving out what lies below `node`.
XMLNode* nextBehind(XMLNode* node, const XMLNode* root);

/// A document's nodes and the memory that they lie in.
struct XMLTree {
  Arena arena;
  Ref<NSObject> source;  // keeps the bytes alive that texts point into; may be absent
  XMLNode* document;

  XMLTree() : document(makeNode(NSXMLDocumentKind)) {}

  XMLNode* makeNode(NSXMLNodeKind kind) {
    auto* const node = arena.make<XMLNode>();
    node->kind = kind;
    return node;
  }
  /// The one element of the document; nullptr when there is none.
  XMLNode* root() const;
};

}  // namespace kbx
