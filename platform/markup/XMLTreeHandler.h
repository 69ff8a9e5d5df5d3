// XMLTreeHandler: makes the nodes of what the XML reader reads.
#pragma once

#include "platform/markup/XMLReader.h"
#include "platform/markup/XMLTextJoiner.h"

namespace kbx {

class XMLTreeHandler final : public XMLHandler {
 public:
  /// source       the text that is read; what is seen of it is not copied
  /// isXHTMLOnly  whether a root that is not XHTML's ends the reading
  XMLTreeHandler(XMLTree& tree, std::string_view source, bool isXHTMLOnly)
      : _tree(tree), _texts(tree, source), _place(tree.document), _isXHTMLOnly(isXHTMLOnly) {}

  bool startElement(const XMLName& name, std::span<const XMLAttribute> attributes,
                    std::span<const XMLNamespaceDeclaration> declarations) override;
  void endElement() override { _place = _place->parent; }
  void text(std::string_view piece) override { _texts.append(_place, piece); }
  void comment(std::string_view text) override { appendNode(NSXMLCommentKind, text); }
  void instruction(std::string_view target, std::string_view data) override;
  void documentType(std::string_view text) override { appendNode(NSXMLDTDKind, text); }

 private:
  XMLNode* appendNode(NSXMLNodeKind kind, std::string_view text);

  XMLTree& _tree;
  XMLTextJoiner _texts;
  XMLNode* _place;
  const bool _isXHTMLOnly;
};

/// Whether a root with this name makes a document XHTML.
inline bool isXHTMLRoot(const XMLName& name) { return name.is(kXHTMLNamespace, "html"); }

}  // namespace kbx
