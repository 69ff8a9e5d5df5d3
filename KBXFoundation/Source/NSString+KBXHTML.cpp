#include "NSString+KBXHTML.h"

#include "KBXLog.h"
#include "KBXSemaphore.h"
#include "NSError+KBX.h"
#include "NSObject+KBX.h"
#include "NSString+KBXCreation.h"
#include "platform/objects/NSClass.h"
#include "platform/xml/VisibleText.h"
#include "platform/xml/XMLProcessing.h"

namespace kbx {
namespace {

constexpr const char* kFile = "KBXFoundation/Source/NSString+KBXHTML";
constexpr const char* kUngated = "+[NSString(KBXHTML) kbxUngatedStringWithHTMLData:error:]";
constexpr const char* kTextData =
    "NSData *textDataFromDocument(NSXMLDocument *, NSData *, NSError **)";

// Everything is preserved; what is neither XML nor XHTML is tidied, or what is not XHTML.
constexpr std::uint64_t kTidyBoth = 0xFFF0061E;
constexpr std::uint64_t kTidyHTML = 0xFFF0021E;

// Text only; XHTML's head and script put out nothing, what is shown without frames a blank.
NSString* stylesheet() {
  return "<?xml version='1.0' encoding='utf-8'?>"
         "     <xsl:stylesheet version='1.0'"
         "     xmlns:xsl='http://www.w3.org/1999/XSL/Transform'"
         "     xmlns:xhtml='http://www.w3.org/1999/xhtml'>"
         "     <xsl:output method='text'/>"
         "     <xsl:template match='xhtml:head'></xsl:template>"
         "     <xsl:template match='xhtml:script'></xsl:template>"
         "     <xsl:template match='xhtml:noframes'><xsl:text> </xsl:text></xsl:template>"
         "     </xsl:stylesheet>"_ns;
}

bool isDataLogged() {
  static constinit detail::LogSwitch area;
  return !area.isKnownToBeOff() && area.enabledLogger(KBXHTMLConverterDataLog());
}

bool isDocumentLogged() {
  static constinit detail::LogSwitch area;
  return !area.isKnownToBeOff() && area.enabledLogger(KBXHTMLConverterPrettyLog());
}

/// Whether nobody sees the documents on the way, so that the text may be found without them.
bool isUnobserved() {
  return XMLProcessing::current().isSystem() && !isDataLogged() && !isDocumentLogged();
}

/// The document without its comments. Absent with no error at all where nothing is left of it,
/// which `isNothingLeft` tells.
Ref<NSXMLDocument> withoutComments(NSXMLDocument* parsed, bool* isNothingLeft,
                                   Ref<NSError>* error) {
  Ref<NSError> localError;
  auto form = parsed->canonicalXMLStringPreservingComments(false);
  auto plain = documentFromString(form, &localError);
  if (plain) return plain;
  *isNothingLeft =
      kbxHasDomain(localError, NSXMLParserErrorDomain(), NSXMLParserEmptyDocumentError);
  if (!*isNothingLeft && error) *error = kbxErrorByAddingStackFrame(localError, kUngated, 211);
  return nullptr;
}

/// The whole conversion, step by step.
Ref<NSString> convert(NSData* htmlData, Ref<NSError>* error) {
  auto parsed = documentFromDataOptions(htmlData, kTidyBoth, error);
  if (!parsed) {
    passOn(error, {kUngated, 196});
    return nullptr;
  }
  logDocument(parsed, "Parsed"_ns);
  bool isNothingLeft = false;
  auto plain = withoutComments(parsed, &isNothingLeft, error);
  if (!plain) return isNothingLeft ? ""_ns : nullptr;
  logDocument(plain, "Comments Removed"_ns);
  auto text = textDataFromDocument(plain, htmlData, error);
  if (!text) {
    passOn(error, {kUngated, 216});
    return nullptr;
  }
  auto string = kbxStringWithData(text, NSUTF8StringEncoding, error);
  if (!string) passOn(error, {kUngated, 218});
  return string;
}

}  // namespace

Ref<NSString> kbxStringWithHTMLData(NSData* htmlData, Ref<NSError>* error) {
  Ref<NSString> result;
  KBXSemaphore::semaphoreForName("KBXStringWithHTMLSemaphore"_ns, 8)->performBlockAndWait([&] {
    result = kbxUngatedStringWithHTMLData(htmlData, error);
  });
  return result;
}

Ref<NSString> kbxUngatedStringWithHTMLData(NSData* htmlData, Ref<NSError>* error) {
  // Before the check, so that an absent input is logged as absent.
  KBX_LOG_AREA("KBXHTMLConverterDataLog", LogSite(kFile, 191, kUngated), "%@"_ns, htmlData);
  KBX_REQUIRE(htmlData, "htmlData", (Frame{kUngated, 192}), error);
  if (htmlData->length() == 0) return ""_ns;
  if (isUnobserved()) {
    auto text = visibleText(htmlData);
    // Where nothing is put out the steps leave a trace in the error, for whoever asks for it.
    if (text->length() > 0 || !error) return NSString::stringWithUTF8(text);
  }
  return convert(htmlData, error);
}

Ref<NSXMLDocument> documentFromDataOptions(NSData* data, std::uint64_t options,
                                           Ref<NSError>* error) {
  constexpr Frame frame{"NSXMLDocument *documentFromDataOptions(NSData *, NSUInteger, NSError **)",
                        17};
  KBX_REQUIRE(data, "data", frame, error);
  return NSXMLDocument::initWithData(data, options, error);
}

Ref<NSXMLDocument> documentFromData(NSData* data, bool isXML, Ref<NSError>* error) {
  return documentFromDataOptions(data, isXML ? kTidyBoth : kTidyHTML, error);
}

Ref<NSXMLDocument> documentFromString(NSString* string, Ref<NSError>* error) {
  constexpr Frame frame{"NSXMLDocument *documentFromString(NSString *, NSError **)", 71};
  KBX_REQUIRE(string, "string", frame, error);
  return documentFromDataOptions(string->dataUsingEncoding(NSUTF8StringEncoding), kTidyHTML, error);
}

Ref<NSXMLDocument> removeCommentsFromDocument(NSXMLDocument* document, Ref<NSError>* error) {
  constexpr Frame frame{"NSXMLDocument *removeCommentsFromDocument(NSXMLDocument *, NSError **)",
                        122};
  KBX_REQUIRE(document, "document", frame, error);
  return documentFromString(document->canonicalXMLStringPreservingComments(false), error);
}

bool isEmptyDocument(NSObject* object) {
  auto* const document = cast<NSXMLDocument>(object);
  return document && document->canonicalXMLStringPreservingComments(false)->length() == 0;
}

Ref<NSData> textDataFromDocument(NSXMLDocument* document, NSData* htmlData, Ref<NSError>* error) {
  KBX_REQUIRE(document, "document", (Frame{kTextData, 87}), error);
  KBX_REQUIRE(htmlData, "htmlData", (Frame{kTextData, 88}), error);
  auto result = document->objectByApplyingXSLTString(stylesheet(), nullptr, error);
  if (!result) {
    passOn(error, {kTextData, 102});
    return nullptr;
  }
  if (auto data = kbxEnsureClass(result, NSData::classObject(), error)) return cast<NSData>(data);
  if (isEmptyDocument(result)) return NSData::data();  // the error stays; it means nothing
  if (error) *error = kbxErrorBySettingObject(*error, htmlData, inputObjectErrorKey());
  passOn(error, {kTextData, 108});
  return nullptr;
}

Ref<NSString> stringFromData(NSData* data, Ref<NSError>* error) {
  KBX_REQUIRE(data, "data", (Frame{"NSString *stringFromData(NSData *, NSError **)", 157}), error);
  return kbxStringWithData(data, NSUTF8StringEncoding, error);
}

void logDocument(NSXMLDocument* document, NSString* label) {
  KBX_LOG_AREA("KBXHTMLConverterPrettyLog",
               LogSite(kFile, 116, "void logDocument(NSXMLDocument *, NSString *)"), "%@: %@"_ns,
               label, document ? document->XMLStringWithOptions(NSXMLNodePrettyPrint) : nullptr);
}

bool shouldDeleteNode(NSXMLNode* node) {
  if (!node || node->kind() != NSXMLElementKind) return false;
  return isEqual(node->name(), "noframes"_ns);
}

// Recursion is safe: the platform's documents are at most 512 elements deep.
void processNode(NSXMLNode* node) {
  auto* const element = cast<NSXMLElement>(node);
  if (!element) return;
  auto children = element->children();
  if (!children) return;
  for (const auto& child : *children) {
    auto* const inner = cast<NSXMLNode>(child);
    if (shouldDeleteNode(inner))
      element->removeChildAtIndex(inner->index());
    else
      processNode(inner);
  }
}

void processDocument(NSXMLDocument* document) {
  processNode(document ? document->rootElement() : nullptr);
}

}  // namespace kbx
