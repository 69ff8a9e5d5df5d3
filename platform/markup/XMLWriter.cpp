#include "platform/markup/XMLWriter.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "platform/markup/CanonicalXML.h"
#include "platform/markup/Characters.h"
#include "platform/markup/XMLNamespaceScope.h"

namespace kbx {
namespace {

constexpr std::size_t kIndent = 4;
// Deep nesting must not make the text many times as long as the document.
constexpr std::size_t kDeepestIndent = 32;

bool isBlank(const XMLNode& node) {
  return node.kind == NSXMLTextKind &&
         std::all_of(node.text.begin(), node.text.end(), isMarkupSpace);
}

/// Whether a node's content may be moved to lines of its own: it holds no text.
bool isStructure(const XMLNode& node) {
  for (const XMLNode* child = node.firstChild; child; child = child->next)
    if (child->kind == NSXMLTextKind && !isBlank(*child)) return false;
  return node.firstChild != nullptr;
}

class Writer {
 public:
  explicit Writer(bool isPretty) : _isPretty(isPretty) {}

  Ref<NSData> write(XMLNode* root) {
    const XMLNode* const above = root->parent;
    for (XMLNode* node = root; node; node = nextInDocument(node, root)) {
      while (!_open.empty() && _open.back().node != node->parent && node->parent != above) close();
      if (isLeftOut(*node)) continue;
      startLine();
      start(*node);
    }
    while (!_open.empty()) close();
    return _bytes.take();
  }

 private:
  struct Open {
    const XMLNode* node;
    bool isStructure;
    XMLNamespaceScope::Mark scope;
  };

  bool isLeftOut(const XMLNode& node) const {
    return !_open.empty() && _open.back().isStructure && isBlank(node);
  }

  void startLine() {
    if (_open.empty() || !_open.back().isStructure) return;
    newLine(_open.size() - (_open.front().node->kind == NSXMLDocumentKind ? 1 : 0));
  }

  void newLine(std::size_t depth) {
    if (_bytes.size() == 0) return;
    _bytes.append('\n');
    _bytes.append(kIndent * std::min(depth, kDeepestIndent), ' ');
  }

  void start(const XMLNode& node) {
    switch (node.kind) {
      case NSXMLDocumentKind:
        _bytes.append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
        _open.push_back({&node, true, _scope.mark()});
        break;
      case NSXMLElementKind:
        startElement(node);
        break;
      case NSXMLTextKind:
        writeEscapedText(node.text, _bytes);
        break;
      case NSXMLCommentKind:
        _bytes.append("<!--");
        writeCommentText(node.text, _bytes);
        _bytes.append("-->");
        break;
      default:
        writeOther(node);
    }
  }

  void writeOther(const XMLNode& node) {
    const bool isType = node.kind == NSXMLDTDKind;
    _bytes.append(isType ? "<!DOCTYPE" : "<?");
    _bytes.append(node.name.qualified);
    if (!node.text.empty()) _bytes.append(' ');
    _bytes.append(node.text);
    _bytes.append(isType ? ">" : "?>");
  }

  void startElement(const XMLNode& node) {
    const XMLNamespaceScope::Mark scope = _scope.mark();
    _bytes.append('<');
    _bytes.append(node.name.qualified);
    for (std::uint32_t i = 0; i < node.declarationCount; ++i)
      declare(node.declarations[i].prefix, node.declarations[i].uri);
    declare(node.name.prefix(), node.name.uri);
    for (std::uint32_t i = 0; i < node.attributeCount; ++i) attribute(node.attributes[i]);
    if (!node.firstChild) {
      _bytes.append("/>");
      _scope.backTo(scope);
      return;
    }
    _bytes.append('>');
    _open.push_back({&node, _isPretty && isStructure(node), scope});
  }

  void declare(std::string_view prefix, std::string_view uri) {
    if (_scope.namespaceOf(prefix) == uri) return;
    _scope.bind(prefix, uri);
    _bytes.append(prefix.empty() ? " xmlns" : " xmlns:");
    _bytes.append(prefix);
    value(uri);
  }

  void attribute(const XMLAttribute& attribute) {
    if (attribute.name.prefixLength > 0) declare(attribute.name.prefix(), attribute.name.uri);
    _bytes.append(' ');
    _bytes.append(attribute.name.qualified);
    value(attribute.value);
  }

  void value(std::string_view text) {
    _bytes.append("=\"");
    writeEscapedValue(text, _bytes);
    _bytes.append('"');
  }

  void close() {
    const Open open = _open.back();
    _open.pop_back();
    _scope.backTo(open.scope);
    if (open.node->kind != NSXMLElementKind) return;
    if (open.isStructure) newLine(_open.size() - (isBelowDocument() ? 1 : 0));
    _bytes.append("</");
    _bytes.append(open.node->name.qualified);
    _bytes.append('>');
  }

  bool isBelowDocument() const {
    return !_open.empty() && _open.front().node->kind == NSXMLDocumentKind;
  }

  const bool _isPretty;
  GrowingBytes _bytes;
  XMLNamespaceScope _scope;
  std::vector<Open> _open;
};

}  // namespace

Ref<NSData> xmlOfNode(XMLNode* node, bool isPretty) { return Writer(isPretty).write(node); }

}  // namespace kbx
