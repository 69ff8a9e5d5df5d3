// NSXMLDocument: an XML document, read from bytes that need not be XML.
#pragma once

#include <string_view>

#include "platform/objects/NSData.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"
#include "platform/xml/NSXMLNode.h"

namespace kbx {

/// Codes of NSXMLParserErrorDomain that the platform makes.
enum NSXMLParserErrorCode : std::int64_t {
  NSXMLParserInternalError = 1,
  NSXMLParserEmptyDocumentError = 4,
  NSXMLParserNotWellFormedError = 5,
};

/// A document and its nodes. May be shared between threads while nobody changes it.
class KBX_PLATFORM NSXMLDocument final : public NSXMLNode {
  KBX_OBJECT(NSXMLDocument, NSXMLNode)
 public:
  /// A document without a root.
  static Ref<NSXMLDocument> document();

  /// The document in bytes of any charset. (initWithData:options:error:)
  ///
  /// options  with NSXMLDocumentTidyXML, a well-formed XML document is taken as it is and
  /// everything
  ///          else is HTML; with NSXMLDocumentTidyHTML alone only well-formed XHTML is taken as it
  ///          is; without both, only well-formed XML is a document at all
  ///
  /// Absent with NSXMLParserErrorDomain: code 4 for absent data and for no bytes, code 5 for what
  /// is not well-formed where nothing may be tidied. HTML never fails. Nothing outside the bytes is
  /// ever loaded.
  static Ref<NSXMLDocument> initWithData(NSData* data, std::uint64_t options, Ref<NSError>* error);

  /// A document made of a tree, which it shares.
  static Ref<NSXMLDocument> documentWithTree(std::shared_ptr<XMLTree> tree);

  /// Absent for a document without a root.
  Ref<NSXMLElement> rootElement() const;

  /// The form of Canonical XML 1.0; empty for a document without a root.
  /// (canonicalXMLStringPreservingComments:)
  Ref<NSString> canonicalXMLStringPreservingComments(bool isPreserving) const;

  /// What a stylesheet makes of the document. (objectByApplyingXSLTString:arguments:error:)
  ///
  /// xslt       the stylesheet's XML
  /// arguments  XPath expressions by the names of parameters; may be absent
  ///
  /// An NSData of the text where the stylesheet's output is text; an NSXMLDocument otherwise, and
  /// one without a root where nothing was put out. Absent with NSXMLParserErrorDomain, code 1, when
  /// the stylesheet is none or fails. A stylesheet can neither read nor write anything else.
  Ref<NSObject> objectByApplyingXSLTString(NSString* xslt, NSDictionary* arguments,
                                           Ref<NSError>* error) const;

  const XMLTree& tree() const noexcept { return *_tree; }

 private:
  explicit NSXMLDocument(std::shared_ptr<XMLTree> tree) noexcept;
};

}  // namespace kbx
