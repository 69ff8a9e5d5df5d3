#include "platform/xml/XSLTTransform.h"

#include <gtest/gtest.h>

#include "tests/support/Markup.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace test;

std::string stylesheet(std::string_view content) {
  return "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>" +
         std::string(content) + "</xsl:stylesheet>";
}

Ref<NSObject> applied(std::string_view content, std::string_view xml,
                      NSDictionary* arguments = nullptr, Ref<NSError>* error = nullptr) {
  return parsed(xml, kTidyBoth)
      ->objectByApplyingXSLTString(string(stylesheet(content)), arguments, error);
}

TEST(XSLTTransform, TextOutputIsData) {
  auto result = applied(
      "<xsl:output method='text'/><xsl:template match='/'>"
      "<xsl:for-each select='//b'><xsl:sort/><xsl:value-of select='.'/></xsl:for-each>"
      "</xsl:template>",
      "<a><b>2</b><b>1</b></a>");
  ASSERT_TRUE(cast<NSData>(result));
  EXPECT_EQ(text(cast<NSData>(result)), "12");
}

TEST(XSLTTransform, OtherOutputIsADocument) {
  auto result = applied("<xsl:template match='/'><r><xsl:copy-of select='.'/></r></xsl:template>",
                        "<a k='v' xmlns:p='u'><!--c--><?p d?><p:b xmlns='w'/></a>");
  auto* const document = cast<NSXMLDocument>(result);
  ASSERT_TRUE(document);
  EXPECT_EQ(text(document->canonicalXMLStringPreservingComments(true)),
            "<r><a xmlns:p=\"u\" k=\"v\"><!--c--><?p d?><p:b xmlns=\"w\"></p:b></a></r>");
}

TEST(XSLTTransform, ArgumentsAreExpressions) {
  auto arguments = NSDictionary::dictionaryWithPairs({{"n"_ns, "1 + 2"_ns}});
  auto result = applied(
      "<xsl:output method='text'/><xsl:param name='n'/>"
      "<xsl:template match='/'><xsl:value-of select='$n'/></xsl:template>",
      "<a/>", arguments);
  EXPECT_EQ(text(cast<NSData>(result)), "3");
}

TEST(XSLTTransform, WhatIsNoStylesheetFails) {
  for (const Ref<NSString>& xslt : {Ref<NSString>(), string(""), string("<a>"), string("<a/>"),
                                    string(stylesheet("<xsl:template/>")),
                                    string(stylesheet("<xsl:template match='/'><xsl:value-of "
                                                      "select='$none'/></xsl:template>"))}) {
    Ref<NSError> error;
    auto document = parsed("<a/>", kTidyBoth);
    EXPECT_FALSE(document->objectByApplyingXSLTString(xslt, nullptr, &error));
    ASSERT_TRUE(error);
    EXPECT_EQ(text(error->domain()), "NSXMLParserErrorDomain");
    EXPECT_EQ(error->code(), NSXMLParserInternalError);
    EXPECT_FALSE(document->objectByApplyingXSLTString(xslt, nullptr, nullptr));
  }
}

TEST(XSLTTransform, AStylesheetReadsNoFile) {
  const TemporaryFolder folder;
  folder.write("secret.xml", "<s>secret</s>");
  const std::string file = folder / "secret.xml";
  for (const std::string& path : {file, "file://" + file}) {
    auto result = applied(
        "<xsl:output method='text'/><xsl:template match='/'>x<xsl:value-of select=\"document('" +
            path + "')\"/></xsl:template>",
        "<a/>");
    auto* const bytes = cast<NSData>(result);
    EXPECT_FALSE(bytes && bytes->view().find("secret") != std::string_view::npos);
    EXPECT_FALSE(applied("<xsl:include href='" + path + "'/>", "<a/>"));
    EXPECT_FALSE(applied("<xsl:import href='" + path + "'/>", "<a/>"));
  }
}

TEST(XSLTTransform, AStylesheetLoadsNoEntity) {
  const TemporaryFolder folder;
  folder.write("secret.txt", "secret");
  const std::string file = folder / "secret.txt";
  const std::string xslt =
      "<!DOCTYPE x [<!ENTITY e SYSTEM '" + file + "'>]>" +
      stylesheet("<xsl:output method='text'/><xsl:template match='/'>x&e;</xsl:template>");
  auto result =
      parsed("<a/>", kTidyBoth)->objectByApplyingXSLTString(string(xslt), nullptr, nullptr);
  auto* const bytes = cast<NSData>(result);
  EXPECT_FALSE(bytes && bytes->view().find("secret") != std::string_view::npos);
}

TEST(XSLTTransform, AStylesheetWritesNoFile) {
  const TemporaryFolder folder;
  const std::string file = folder / "written";
  applied(
      "<xsl:template match='/'><exsl:document xmlns:exsl='http://exslt.org/common' "
      "xsl:extension-element-prefixes='exsl' href='" +
          file + "'>x</exsl:document></xsl:template>",
      "<a/>");
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(XSLTTransform, ADeepDocumentIsNoTrouble) {
  std::string xml = "x";
  for (int i = 0; i < 512; ++i) xml = "<a>" + xml + "</a>";
  auto result = applied("<xsl:output method='text' indent='no'/>", xml);
  EXPECT_EQ(text(cast<NSData>(result)), "x");
}

}  // namespace
}  // namespace kbx
