#include "platform/xml/NSXMLDocument.h"

#include "platform/markup/CanonicalXML.h"
#include "platform/objects/NSClass.h"
#include "platform/xml/XMLProcessing.h"

namespace kbx {

KBX_CLASS(NSXMLDocument)

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
