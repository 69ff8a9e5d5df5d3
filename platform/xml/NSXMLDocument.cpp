#include "platform/xml/NSXMLDocument.h"

#include "platform/markup/CanonicalXML.h"
#include "platform/objects/NSClass.h"
#include "platform/xml/MarkupParser.h"
#include "platform/xml/TextStylesheet.h"
#include "platform/xml/XMLErrors.h"
#include "platform/xml/XMLProcessing.h"
#include "platform/xml/XSLTTransform.h"

namespace kbx {

KBX_CLASS(NSXMLDocument)

namespace {

class SystemXMLProcessing final : public XMLProcessing {
 public:
  bool isSystem() const override { return true; }
};

Tidying tidyingOf(std::uint64_t options) {
  if ((options & NSXMLDocumentTidyXML) != 0) return Tidying::XMLAndHTML;
  return (options & NSXMLDocumentTidyHTML) != 0 ? Tidying::HTML : Tidying::None;
}

}  // namespace

KBX_SERVICE(XMLProcessing, SystemXMLProcessing)

void failXML(Ref<NSError>* error, NSXMLParserErrorCode code, std::string_view description) {
  if (!error) return;
  auto text = NSString::stringWithLossyUTF8(description);
  *error = NSError::errorWithDomain(
      NSXMLParserErrorDomain(), code,
      NSDictionary::dictionaryWithPairs({{NSLocalizedDescriptionKey(), text}}));
}

Ref<NSXMLDocument> XMLProcessing::documentWithData(NSData* data, std::uint64_t options,
                                                   Ref<NSError>* error) {
  if (!data || data->length() == 0) {
    failXML(error, NSXMLParserEmptyDocumentError, "The document is empty.");
    return nullptr;
  }
  if (auto tree = parseMarkup(data, tidyingOf(options)))
    return NSXMLDocument::documentWithTree(std::move(tree));
  failXML(error, NSXMLParserNotWellFormedError, "The document isn’t well-formed XML.");
  return nullptr;
}

Ref<NSObject> XMLProcessing::objectByApplyingXSLT(const NSXMLDocument& document, NSString* xslt,
                                                  NSDictionary* arguments, Ref<NSError>* error) {
  if (!arguments || arguments->count() == 0) {
    if (const auto stylesheet = TextStylesheet::recognise(xslt)) {
      auto text = stylesheet->apply(document.tree());
      if (text->length() > 0) return text;
      return NSXMLDocument::document();
    }
  }
  return applyXSLT(document.tree(), xslt, arguments, error);
}

NSXMLDocument::NSXMLDocument(std::shared_ptr<XMLTree> tree) noexcept
    : NSXMLNode(tree, tree->document) {}

Ref<NSXMLDocument> NSXMLDocument::document() {
  return documentWithTree(std::make_shared<XMLTree>());
}

Ref<NSXMLDocument> NSXMLDocument::documentWithTree(std::shared_ptr<XMLTree> tree) {
  return Ref<NSXMLDocument>::adopt(new NSXMLDocument(std::move(tree)));
}

Ref<NSXMLDocument> NSXMLDocument::initWithData(NSData* data, std::uint64_t options,
                                               Ref<NSError>* error) {
  return XMLProcessing::current().documentWithData(data, options, error);
}

Ref<NSXMLElement> NSXMLDocument::rootElement() const {
  auto root = object(_tree->root());
  return cast<NSXMLElement>(root);
}

Ref<NSString> NSXMLDocument::canonicalXMLStringPreservingComments(bool isPreserving) const {
  return NSString::stringWithUTF8(canonicalXML(*_tree, isPreserving));
}

Ref<NSObject> NSXMLDocument::objectByApplyingXSLTString(NSString* xslt, NSDictionary* arguments,
                                                        Ref<NSError>* error) const {
  return XMLProcessing::current().objectByApplyingXSLT(*this, xslt, arguments, error);
}

}  // namespace kbx
