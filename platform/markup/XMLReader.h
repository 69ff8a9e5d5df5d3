// XMLReader: well-formed XML documents, read strictly; everything else is refused.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/markup/XMLNamespaceScope.h"
#include "platform/markup/XMLTree.h"
#include "platform/objects/SeededHash.h"

namespace kbx {

/// Takes the parts of a document in their order. Texts are views into the document or the reader's
/// arena, except those of text(), which are good for the call alone.
class XMLHandler {
 public:
  virtual ~XMLHandler() = default;
  /// False ends the reading.
  virtual bool startElement(const XMLName& name, std::span<const XMLAttribute> attributes,
                            std::span<const XMLNamespaceDeclaration> declarations) = 0;
  virtual void endElement() = 0;
  /// A run of text may come in several pieces.
  virtual void text(std::string_view piece) = 0;
  virtual void comment(std::string_view) {}
  virtual void instruction(std::string_view /*target*/, std::string_view /*data*/) {}
  virtual void documentType(std::string_view) {}
};

/// Reads one document: XML 1.0 with namespaces, without recursion, in linear time.
///
/// Nothing outside the document is ever loaded. Entities that it declares itself stand for plain
/// text, within bounds; a document with others (markup in an entity, a reference to what only an
/// external part could declare, parameter entities) is refused, and so is one that is nested
/// deeper than kDeepestElement.
class XMLReader {
 public:
  /// text   clean as MarkupText has it
  /// arena  for values that are not in the text as they are
  XMLReader(std::string_view text, Arena& arena, XMLHandler& handler)
      : _p(text.data()), _end(text.data() + text.size()), _arena(arena), _handler(handler) {}

  enum class Outcome {
    NotWellFormed,
    NoRoot,  // at least one comment or instruction and nothing else
    Stopped,
    Document,
  };
  Outcome read();

 private:
  static constexpr std::size_t kLongestExpansion = std::size_t{1} << 20;

  struct OpenElement {
    std::string_view name;
    XMLNamespaceScope::Mark scope;
  };

  std::string_view left() const { return {_p, static_cast<std::size_t>(_end - _p)}; }
  bool startsWith(std::string_view text) const { return left().starts_with(text); }
  bool skip(std::string_view text);
  bool skipSpace();
  std::string_view takeTo(std::string_view mark);
  std::string_view takeName();
  std::string_view takeQuoted();
  bool takeEquals();

  bool readDeclaration();
  bool readMisc();
  bool readComment();
  bool readInstruction();

  bool readDocumentType();
  bool readExternalID(bool isSystemRequired);
  bool readSubset();
  bool readSubsetPart();
  bool readEntity();
  bool skipDeclaration();
  void declareEntity(std::string_view name, std::string_view value);
  bool expandEntityValue(std::string_view value, std::string& text) const;

  bool readContent();
  bool readMarkup();
  bool readText();
  bool readCharacters(std::string_view run);
  bool readSection();
  bool readReference(std::string_view& run, std::string& scratch, std::string_view& text);

  bool readStartTag();
  bool readAttributes(bool& isEmpty);
  bool readAttribute();
  bool readValue(std::string_view raw, std::string_view& value);
  bool declare(std::string_view prefix, std::string_view uri);
  bool resolve(XMLName& name, bool isElement) const;
  bool resolveAll(XMLName& name);
  bool areAttributesDistinct();
  bool readEndTag();
  void close();

  const char* _p;
  const char* const _end;
  Arena& _arena;
  XMLHandler& _handler;

  XMLNamespaceScope _scope;
  std::vector<OpenElement> _open;
  std::vector<XMLAttribute> _attributes;
  std::vector<XMLNamespaceDeclaration> _declarations;
  std::unordered_set<std::string_view, SeededHash>
      _declaredPrefixes;  // of one tag, once there are many
  std::unordered_map<std::string_view, std::string, SeededHash> _entities;
  std::size_t _expandedLength = 0;  // of all entities, declared and used; kLongestExpansion at most
  bool _isStopped = false;
  bool _hasMisc = false;
};

}  // namespace kbx
