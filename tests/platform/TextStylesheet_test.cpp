#include "platform/xml/TextStylesheet.h"

#include <gtest/gtest.h>

#include "platform/xml/XSLTTransform.h"
#include "tests/support/Markup.h"
#include "tests/support/RandomMarkup.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace test;

std::string changed(std::string_view from, std::string_view to) {
  std::string xslt(kVisibleText);
  return xslt.replace(xslt.find(from), from.size(), to);
}

/// The text that the XSLT library makes, "" for an empty document.
std::string textByLibrary(std::string_view xslt, NSXMLDocument* document) {
  auto result = applyXSLT(document->tree(), string(xslt), nullptr, nullptr);
  EXPECT_TRUE(result);
  auto* const bytes = cast<NSData>(result);
  return bytes ? std::string(bytes->view()) : std::string();
}

TEST(TextStylesheet, OnlyWhatReplacesElementsByTextIsRecognised) {
  EXPECT_TRUE(TextStylesheet::recognise(string(kVisibleText)));
  const std::string others[] = {
      "",
      "<a/>",
      changed("method='text'", "method='xml'"),
      changed("method='text'", "method='text' encoding='utf-16'"),
      changed("match='h:head'", "match='h:head/x'"),
      changed("match='h:head'", "match='*'"),
      changed("match='h:head'", "match='head'"),
      changed("match='h:head'", "match='x:head'"),
      changed("match='h:head'", "match='h:head' mode='m'"),
      changed("match='h:head'", "match='h:script'"),
      changed("match='h:head'>", "match='h:head'>text"),
      changed("<xsl:text> </xsl:text>", "<xsl:apply-templates/>"),
      changed("<xsl:output method='text'/>", ""),
      changed("<xsl:output method='text'/>",
              "<xsl:output method='text'/><xsl:strip-space "
              "elements='*'/>"),
      changed("version='1.0' xmlns", "version='2.0' xmlns"),
  };
  for (const std::string& xslt : others)
    EXPECT_FALSE(TextStylesheet::recognise(string(xslt))) << xslt;
  EXPECT_FALSE(TextStylesheet::recognise(nullptr));
}

TEST(TextStylesheet, TheWalkFindsWhatTheLibraryFinds) {
  for (const char* input :
       {"x", "<p>a<p>b<!-- c --><script>d</script>", "a<noframes>b<p>c</noframes>d", "<svg><a>b",
        "<title>t</title>", "<noframes></noframes><noframes>a", "&lt;&amp;&#13;é\u00A0"}) {
    SCOPED_TRACE(input);
    auto document = parsed(input);
    EXPECT_EQ(textBy(kVisibleText, document), textByLibrary(kVisibleText, document));
  }
}

TEST(TextStylesheet, TheWalkFindsWhatTheLibraryFindsInAnyDocument) {
  std::mt19937 random(20250101);
  for (int i = 0; i < 3000; ++i) {
    const std::string html = randomHTML(random);
    SCOPED_TRACE(html);
    auto document = parsed(html, i % 2 == 0 ? kTidyBoth : kTidyHTML);
    ASSERT_EQ(textBy(kVisibleText, document), textByLibrary(kVisibleText, document));
    const std::string form = canonical(document);
    ASSERT_EQ(canonical(form, kTidyBoth), form);
  }
}

TEST(TextStylesheet, NothingPutOutIsADocumentWithoutARoot) {
  auto document = parsed("<p> </p>");
  auto result = document->objectByApplyingXSLTString(string(kVisibleText), nullptr, nullptr);
  auto* const empty = cast<NSXMLDocument>(result);
  ASSERT_TRUE(empty);
  EXPECT_EQ(canonical(empty), "");
  auto byLibrary = applyXSLT(document->tree(), string(kVisibleText), nullptr, nullptr);
  ASSERT_TRUE(cast<NSXMLDocument>(byLibrary));
}

}  // namespace
}  // namespace kbx
