#include "platform/xml/XSLTTransform.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxslt/security.h>
#include <libxslt/transform.h>
#include <libxslt/xslt.h>
#include <libxslt/xsltInternals.h>
#include <libxslt/xsltutils.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/xml/NSXMLDocument.h"
#include "platform/xml/XMLErrors.h"

namespace kbx {
namespace {

struct Free {
  void operator()(xmlDocPtr document) const { xmlFreeDoc(document); }
  void operator()(xsltStylesheetPtr stylesheet) const { xsltFreeStylesheet(stylesheet); }
  void operator()(xsltTransformContextPtr context) const { xsltFreeTransformContext(context); }
  void operator()(xmlChar* text) const { xmlFree(text); }
};
using Document = std::unique_ptr<xmlDoc, Free>;
using Stylesheet = std::unique_ptr<xsltStylesheet, Free>;
using Context = std::unique_ptr<xsltTransformContext, Free>;
using Text = std::unique_ptr<xmlChar, Free>;

void ignoreMessage(void*, const char*, ...) {}
void ignoreError(void*, xmlErrorPtr) {}

/// Denies files and the network to every stylesheet, also while it is being read.
xsltSecurityPrefsPtr setUpOnce() {
  static auto* const preferences = [] {
    xmlInitParser();
    xsltInit();
    xsltSetGenericErrorFunc(nullptr, ignoreMessage);
    auto* const denied = xsltNewSecurityPrefs();
    for (const auto option :
         {XSLT_SECPREF_READ_FILE, XSLT_SECPREF_WRITE_FILE, XSLT_SECPREF_CREATE_DIRECTORY,
          XSLT_SECPREF_READ_NETWORK, XSLT_SECPREF_WRITE_NETWORK})
      xsltSetSecurityPrefs(denied, option, xsltSecurityForbid);
    xsltSetDefaultSecurityPrefs(denied);
    return denied;
  }();
  return preferences;
}

/// Keeps the library's messages of this thread from standard error while it lives.
class Silence {
 public:
  Silence() : _function(xmlStructuredError), _context(xmlStructuredErrorContext) {
    xmlSetStructuredErrorFunc(nullptr, ignoreError);
  }
  ~Silence() { xmlSetStructuredErrorFunc(_context, _function); }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  xmlStructuredErrorFunc _function;
  void* _context;
};

const xmlChar* chars(const std::string& text) {
  return reinterpret_cast<const xmlChar*>(text.c_str());
}
const xmlChar* chars(std::string_view text) {
  return reinterpret_cast<const xmlChar*>(text.data());
}
int lengthOf(std::string_view text) { return static_cast<int>(text.size()); }

/// The library's form of a document. Made node by node: reading its XML again would meet the
/// library's limit of depth.
class Copy {
 public:
  explicit Copy(const XMLTree& tree) : _document(xmlNewDoc(chars(std::string("1.0")))) {
    auto* parent = reinterpret_cast<xmlNodePtr>(_document.get());
    for (XMLNode* node = tree.document->firstChild; node;) {
      auto* const copy = add(*node, parent);
      if (node->firstChild) {
        parent = copy;
        node = node->firstChild;
        continue;
      }
      for (; node != tree.document && !node->next; node = node->parent)
        if (node->parent != tree.document) parent = parent->parent;
      node = node == tree.document ? nullptr : node->next;
    }
  }

  Document take() { return std::move(_document); }

 private:
  xmlNodePtr add(const XMLNode& node, xmlNodePtr parent) {
    switch (node.kind) {
      case NSXMLElementKind:
        return addElement(node, parent);
      case NSXMLTextKind:
        // A text of more than the library counts in is cut; nothing so long comes in mail.
        return xmlAddChild(
            parent, xmlNewDocTextLen(_document.get(), chars(node.text), lengthOf(node.text)));
      case NSXMLCommentKind:
        return xmlAddChild(parent,
                           xmlNewDocComment(_document.get(), chars(std::string(node.text))));
      case NSXMLProcessingInstructionKind:
        return xmlAddChild(parent,
                           xmlNewDocPI(_document.get(), chars(std::string(node.name.qualified)),
                                       chars(std::string(node.text))));
      default:
        return parent;
    }
  }

  xmlNodePtr addElement(const XMLNode& node, xmlNodePtr parent) {
    const std::string local(node.name.local());
    auto* const element =
        xmlAddChild(parent, xmlNewDocNode(_document.get(), nullptr, chars(local), nullptr));
    for (std::uint32_t i = 0; i < node.declarationCount; ++i)
      declare(element, node.declarations[i].prefix, node.declarations[i].uri);
    xmlSetNs(element, namespaceOf(element, node.name));
    for (std::uint32_t i = 0; i < node.attributeCount; ++i) {
      const XMLAttribute& attribute = node.attributes[i];
      auto* const space =
          attribute.name.prefixLength > 0 ? namespaceOf(element, attribute.name) : nullptr;
      xmlNewNsProp(element, space, chars(std::string(attribute.name.local())),
                   chars(std::string(attribute.value)));
    }
    return element;
  }

  static xmlNsPtr declare(xmlNodePtr element, std::string_view prefix, std::string_view uri) {
    const std::string prefixText(prefix);
    return xmlNewNs(element, chars(std::string(uri)), prefix.empty() ? nullptr : chars(prefixText));
  }

  xmlNsPtr namespaceOf(xmlNodePtr element, const XMLName& name) {
    const std::string prefix(name.prefix());
    const std::string uri(name.uri);
    auto* const found =
        xmlSearchNs(_document.get(), element, prefix.empty() ? nullptr : chars(prefix));
    if (found && found->href && uri == reinterpret_cast<const char*>(found->href)) return found;
    if (uri.empty() && !found) return nullptr;
    return declare(element, prefix, uri);
  }

  Document _document;
};

Stylesheet parseStylesheet(NSString* xslt) {
  const auto bytes = xslt ? xslt->UTF8Data() : nullptr;
  if (!bytes) return nullptr;
  Document document(xmlReadMemory(reinterpret_cast<const char*>(bytes->bytes()),
                                  static_cast<int>(bytes->length()), nullptr, "UTF-8",
                                  XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
  if (!document) return nullptr;
  Stylesheet stylesheet(xsltParseStylesheetDoc(document.get()));
  if (!stylesheet) return nullptr;
  (void)document.release();  // the stylesheet's now
  if (stylesheet->errors > 0) return nullptr;
  return stylesheet;
}

std::vector<std::string> parameters(NSDictionary* arguments) {
  std::vector<std::string> texts;
  if (!arguments) return texts;
  for (const auto& [key, value] : *arguments) {
    texts.push_back(key->description()->lossyUTF8());
    texts.push_back(value->description()->lossyUTF8());
  }
  return texts;
}

Document transform(xmlDocPtr document, xsltStylesheetPtr stylesheet, NSDictionary* arguments) {
  const std::vector<std::string> texts = parameters(arguments);
  std::vector<const char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (const std::string& text : texts) pointers.push_back(text.c_str());
  pointers.push_back(nullptr);
  const Context context(xsltNewTransformContext(stylesheet, document));
  if (!context) return nullptr;
  xsltSetCtxtSecurityPrefs(setUpOnce(), context.get());
  xsltSetTransformErrorFunc(context.get(), nullptr, ignoreMessage);
  Document result(xsltApplyStylesheetUser(stylesheet, document, pointers.data(), nullptr, nullptr,
                                          context.get()));
  if (context->state != XSLT_STATE_OK) return nullptr;
  return result;
}

Ref<NSObject> objectOf(std::string_view output, xsltStylesheetPtr stylesheet, Ref<NSError>* error) {
  if (output.empty()) return NSXMLDocument::document();
  auto bytes = NSData::dataWithBytes(output);
  const std::string_view method =
      stylesheet->method ? reinterpret_cast<const char*>(stylesheet->method) : "xml";
  if (method == "text") return bytes;
  return NSXMLDocument::initWithData(
      bytes, method == "html" ? NSXMLDocumentTidyHTML : NSXMLNodeOptionsNone, error);
}

}  // namespace

Ref<NSObject> applyXSLT(const XMLTree& document, NSString* xslt, NSDictionary* arguments,
                        Ref<NSError>* error) {
  setUpOnce();
  const Silence silence;
  const Stylesheet stylesheet = parseStylesheet(xslt);
  if (!stylesheet) {
    failXML(error, NSXMLParserInternalError, "The stylesheet couldn’t be read.");
    return nullptr;
  }
  const Document copy = Copy(document).take();
  const Document result = transform(copy.get(), stylesheet.get(), arguments);
  xmlChar* output = nullptr;
  int length = 0;
  if (!result || xsltSaveResultToString(&output, &length, result.get(), stylesheet.get()) != 0) {
    failXML(error, NSXMLParserInternalError, "The stylesheet couldn’t be applied.");
    return nullptr;
  }
  const Text owner(output);
  return objectOf({reinterpret_cast<const char*>(output), static_cast<std::size_t>(length)},
                  stylesheet.get(), error);
}

}  // namespace kbx
