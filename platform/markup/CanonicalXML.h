// CanonicalXML: a document in Canonical XML 1.0.
#pragma once

#include <vector>

#include "platform/markup/GrowingBytes.h"
#include "platform/markup/XMLReader.h"

namespace kbx {

/// Writes the canonical form of what it is told, from a tree or straight from a reader. Namespaces
/// are declared where they are needed, also when nobody declared them.
class CanonicalXMLWriter final : public XMLHandler {
 public:
  explicit CanonicalXMLWriter(bool isPreservingComments)
      : _isPreservingComments(isPreservingComments) {}

  bool startElement(const XMLName& name, std::span<const XMLAttribute> attributes,
                    std::span<const XMLNamespaceDeclaration> declarations) override;
  void endElement() override;
  void text(std::string_view piece) override;
  void comment(std::string_view text) override;
  void instruction(std::string_view target, std::string_view data) override;

  /// The form; of a document without a root, nothing.
  Ref<NSData> take() { return _hasRoot ? _bytes.take() : NSData::data(); }

 private:
  struct OpenElement {
    std::string_view name;
    XMLNamespaceScope::Mark scope;
  };

  void declare(std::string_view prefix, std::string_view uri);
  void writeDeclarations();
  void writeAttributes(std::span<const XMLAttribute> attributes);
  void beginOutside();
  void endOutside();

  const bool _isPreservingComments;
  bool _hasRoot = false;
  GrowingBytes _bytes;
  XMLNamespaceScope _scope;  // what has been written
  std::vector<OpenElement> _open;
  std::vector<XMLNamespaceDeclaration> _declarations;
  std::vector<const XMLAttribute*> _attributes;
};

/// The canonical form of a tree, empty without a root.
Ref<NSData> canonicalXML(const XMLTree& tree, bool isPreservingComments);

/// A comment's content as XML allows it: "- -" for two dashes, none at the end.
void writeCommentText(std::string_view text, GrowingBytes& bytes);
/// Text with the characters that are markup, and CR, as references.
void writeEscapedText(std::string_view text, GrowingBytes& bytes);
/// The same for the value of an attribute between double quotes.
void writeEscapedValue(std::string_view value, GrowingBytes& bytes);

}  // namespace kbx
