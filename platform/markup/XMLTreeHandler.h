// XMLTreeHandler: makes the nodes of what the XML reader reads.
#pragma once

#include "platform/markup/XHTMLVisibility.h"
#include "platform/markup/XMLReader.h"
#include "platform/markup/XMLTextJoiner.h"

namespace kbx {

class XMLTreeHandler final : public XMLHandler {
 public:
  /// source       the text that is read; what is seen of it is not copied
  /// isXHTMLOnly  whether a root that is not XHTML's ends the reading; then what belongs to a head
  ///              and stands elsewhere is emptied, for no stylesheet hides it there
  XMLTreeHandler(XMLTree& tree, std::string_view source, bool isXHTMLOnly)
      : _tree(tree), _texts(tree, source), _place(tree.document), _isXHTMLOnly(isXHTMLOnly) {}

  bool startElement(const XMLName& name, std::span<const XMLAttribute> attributes,
                    std::span<const XMLNamespaceDeclaration> declarations) override;
  void endElement() override;
  void text(std::string_view piece) override {
    if (!_visibility.isMisplaced()) _texts.append(_place, piece);
  }
  void comment(std::string_view text) override;
  void instruction(std::string_view target, std::string_view data) override;
  void documentType(std::string_view text) override { appendNode(NSXMLDTDKind, text); }

 private:
  XMLNode* appendNode(NSXMLNodeKind kind, std::string_view text);
  bool isLeftOut() const { return _visibility.isMisplaced() && !_visibility.isOutermostHidden(); }

  XMLTree& _tree;
  XMLTextJoiner _texts;
  XMLNode* _place;
  XHTMLVisibility _visibility;  // used for XHTML only
  const bool _isXHTMLOnly;
};

}  // namespace kbx
