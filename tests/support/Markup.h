// Short ways to parse documents in tests.
#pragma once

#include <string>
#include <string_view>

#include "platform/xml/NSXMLDocument.h"

namespace kbx::test {

/// Everything is kept, and what is no XML is tidied.
inline constexpr std::uint64_t kTidyBoth = 0xFFF0061E;
/// Everything is kept, and what is no XHTML is tidied.
inline constexpr std::uint64_t kTidyHTML = 0xFFF0021E;

/// No head and no script; a blank for what is shown where frames are not.
inline constexpr std::string_view kVisibleText =
    "<?xml version='1.0' encoding='utf-8'?>"
    "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'"
    " xmlns:h='http://www.w3.org/1999/xhtml'><xsl:output method='text'/>"
    "<xsl:template match='h:head'></xsl:template><xsl:template match='h:script'></xsl:template>"
    "<xsl:template match='h:noframes'><xsl:text> </xsl:text></xsl:template></xsl:stylesheet>";

inline Ref<NSXMLDocument> parsed(std::string_view bytes, std::uint64_t options = kTidyHTML) {
  return NSXMLDocument::initWithData(NSData::dataWithBytes(bytes), options, nullptr);
}

inline std::string canonical(NSXMLDocument* document) {
  return document->canonicalXMLStringPreservingComments(false)->lossyUTF8();
}
inline std::string canonical(std::string_view bytes, std::uint64_t options = kTidyHTML) {
  return canonical(parsed(bytes, options));
}

/// What stands between the first `start` and the last `end`.
inline std::string between(const std::string& text, std::string_view start, std::string_view end) {
  const std::size_t first = text.find(start) + start.size();
  return text.substr(first, text.rfind(end) - first);
}

/// The canonical form of what is in the body of tidied HTML.
inline std::string bodyOf(std::string_view html) {
  return between(canonical(html), "<body>", "</body>");
}
/// The same of the head.
inline std::string headOf(std::string_view html) {
  return between(canonical(html), "<head>", "</head>");
}

/// The text of a document by way of a stylesheet; "" for an empty result.
inline std::string textBy(std::string_view xslt, NSXMLDocument* document) {
  auto stylesheet = NSString::stringWithUTF8(xslt);
  auto result = document->objectByApplyingXSLTString(stylesheet, nullptr, nullptr);
  auto* const bytes = cast<NSData>(result);
  return bytes ? std::string(bytes->view()) : std::string();
}

/// What a reader sees of a document: parsed, its comments removed, parsed again, transformed.
inline std::string visibleText(std::string_view bytes) {
  auto document = parsed(bytes, kTidyBoth);
  auto plain = document->canonicalXMLStringPreservingComments(false);
  if (plain->length() == 0) return {};
  auto again = NSXMLDocument::initWithData(plain->UTF8Data(), kTidyHTML, nullptr);
  return textBy(kVisibleText, again);
}

}  // namespace kbx::test
