#include "platform/markup/CanonicalXML.h"

#include <algorithm>

#include "platform/markup/Characters.h"
#include "platform/markup/Entities.h"

namespace kbx {
namespace {

std::string_view referenceFor(char c) {
  switch (c) {
    case '<':
    case '>':
    case '&':
      return entityFor(static_cast<unsigned char>(c));
    case '"':
      return "&quot;";
    case '\t':
      return "&#x9;";
    case '\n':
      return "&#xA;";
    default:
      return "&#xD;";
  }
}

/// Text in which some characters, and no others, are written as references.
template <char... special>
void writeEscaped(std::string_view text, GrowingBytes& bytes) {
  const char* p = text.data();
  const char* const end = p + text.size();
  for (;;) {
    const char* const stop = findAnyByte<special...>(p, end);
    bytes.append({p, static_cast<std::size_t>(stop - p)});
    if (stop == end) return;
    bytes.append(referenceFor(*stop));
    p = stop + 1;
  }
}

bool isBefore(const XMLAttribute* a, const XMLAttribute* b) {
  if (const int order = a->name.uri.compare(b->name.uri)) return order < 0;
  return a->name.local() < b->name.local();
}

void walk(const XMLTree& tree, XMLHandler& handler) {
  const XMLNode* depth = tree.document;  // the innermost node that is open
  for (XMLNode* node = tree.document->firstChild; node;
       node = nextInDocument(node, tree.document)) {
    for (; depth != node->parent; depth = depth->parent) handler.endElement();
    switch (node->kind) {
      case NSXMLElementKind:
        handler.startElement(node->name, {node->attributes, node->attributeCount},
                             {node->declarations, node->declarationCount});
        depth = node;
        break;
      case NSXMLTextKind:
        handler.text(node->text);
        break;
      case NSXMLCommentKind:
        handler.comment(node->text);
        break;
      case NSXMLProcessingInstructionKind:
        handler.instruction(node->name.qualified, node->text);
        break;
      default:
        break;
    }
  }
  for (; depth != tree.document; depth = depth->parent) handler.endElement();
}

}  // namespace

void writeEscapedText(std::string_view text, GrowingBytes& bytes) {
  writeEscaped<'&', '<', '>', '\r'>(text, bytes);
}

void writeEscapedValue(std::string_view value, GrowingBytes& bytes) {
  writeEscaped<'&', '<', '"', '\t', '\n', '\r'>(value, bytes);
}

void writeCommentText(std::string_view text, GrowingBytes& bytes) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    bytes.append(text[i]);
    const bool isFollowed = i + 1 == text.size() || text[i + 1] == '-';
    if (text[i] == '-' && isFollowed) bytes.append(' ');
  }
}

bool CanonicalXMLWriter::startElement(const XMLName& name, std::span<const XMLAttribute> attributes,
                                      std::span<const XMLNamespaceDeclaration> declarations) {
  _hasRoot = true;
  _open.push_back({name.qualified, _scope.mark()});
  _declarations.clear();
  for (const auto& declaration : declarations) declare(declaration.prefix, declaration.uri);
  declare(name.prefix(), name.uri);
  for (const XMLAttribute& attribute : attributes)
    if (attribute.name.prefixLength > 0) declare(attribute.name.prefix(), attribute.name.uri);
  _bytes.append('<');
  _bytes.append(name.qualified);
  writeDeclarations();
  writeAttributes(attributes);
  _bytes.append('>');
  return true;
}

/// Notes a declaration that is not in force yet.
void CanonicalXMLWriter::declare(std::string_view prefix, std::string_view uri) {
  if (_scope.namespaceOf(prefix) == uri) return;
  _scope.bind(prefix, uri);
  _declarations.push_back({prefix, uri});
}

void CanonicalXMLWriter::writeDeclarations() {
  std::sort(_declarations.begin(), _declarations.end(),
            [](const auto& a, const auto& b) { return a.prefix < b.prefix; });
  for (const auto& [prefix, uri] : _declarations) {
    _bytes.append(prefix.empty() ? " xmlns" : " xmlns:");
    _bytes.append(prefix);
    _bytes.append("=\"");
    writeEscapedValue(uri, _bytes);
    _bytes.append('"');
  }
}

void CanonicalXMLWriter::writeAttributes(std::span<const XMLAttribute> attributes) {
  _attributes.clear();
  for (const XMLAttribute& attribute : attributes) _attributes.push_back(&attribute);
  std::sort(_attributes.begin(), _attributes.end(), isBefore);
  for (const XMLAttribute* attribute : _attributes) {
    _bytes.append(' ');
    _bytes.append(attribute->name.qualified);
    _bytes.append("=\"");
    writeEscapedValue(attribute->value, _bytes);
    _bytes.append('"');
  }
}

void CanonicalXMLWriter::endElement() {
  _bytes.append("</");
  _bytes.append(_open.back().name);
  _bytes.append('>');
  _scope.backTo(_open.back().scope);
  _open.pop_back();
}

void CanonicalXMLWriter::text(std::string_view piece) { writeEscapedText(piece, _bytes); }

// What stands outside the root has a line of its own.
void CanonicalXMLWriter::beginOutside() {
  if (_open.empty() && _hasRoot) _bytes.append('\n');
}
void CanonicalXMLWriter::endOutside() {
  if (_open.empty() && !_hasRoot) _bytes.append('\n');
}

void CanonicalXMLWriter::comment(std::string_view text) {
  if (!_isPreservingComments) return;
  beginOutside();
  _bytes.append("<!--");
  writeCommentText(text, _bytes);
  _bytes.append("-->");
  endOutside();
}

void CanonicalXMLWriter::instruction(std::string_view target, std::string_view data) {
  beginOutside();
  _bytes.append("<?");
  _bytes.append(target);
  if (!data.empty()) _bytes.append(' ');
  _bytes.append(data);
  _bytes.append("?>");
  endOutside();
}

Ref<NSData> canonicalXML(const XMLTree& tree, bool isPreservingComments) {
  CanonicalXMLWriter writer(isPreservingComments);
  walk(tree, writer);
  return writer.take();
}

}  // namespace kbx
