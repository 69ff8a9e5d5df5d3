#include "platform/xml/XMLProcessing.h"

#include "platform/xml/MarkupParser.h"
#include "platform/xml/NSXMLDocument.h"
#include "platform/xml/TextStylesheet.h"
#include "platform/xml/XMLErrors.h"
#include "platform/xml/XSLTTransform.h"

namespace kbx {
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

}  // namespace kbx
