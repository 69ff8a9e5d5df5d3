#include "platform/xml/NSXMLDocument.h"

#include <gtest/gtest.h>

#include "platform/xml/XMLProcessing.h"
#include "tests/support/Markup.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace test;

constexpr std::uint64_t kNoTidying = 0;

Ref<NSError> errorOf(NSData* bytes, std::uint64_t options) {
  Ref<NSError> error;
  EXPECT_FALSE(NSXMLDocument::initWithData(bytes, options, &error));
  return error;
}

// ---- XML that is taken as it is ----

TEST(NSXMLDocument, WellFormedXMLIsTakenAsItIs) {
  struct Case {
    const char *rule, *input, *output;
  };
  for (auto [rule, input, output] : {
           Case{"an element", "<a/>", "<a></a>"},
           Case{"white space", "<a> x\n\t y </a>", "<a> x\n\t y </a>"},
           Case{"a declaration", "<?xml version='1.0'?><a/>", "<a></a>"},
           Case{"a document type", "<!DOCTYPE a SYSTEM 'x'><a/>", "<a></a>"},
           Case{"a public document type", "<!DOCTYPE a PUBLIC 'p' 's'>\n<a/>", "<a></a>"},
           Case{"namespaces", "<p:a xmlns:p='u' p:b='1'><c xmlns='d'/></p:a>",
                "<p:a xmlns:p=\"u\" p:b=\"1\"><c xmlns=\"d\"></c></p:a>"},
           Case{"no namespace inside one", "<a xmlns='u'><b xmlns=''/></a>",
                "<a xmlns=\"u\"><b xmlns=\"\"></b></a>"},
           Case{"references", "<a b='&lt;&#10;&quot;'>&amp;&#x20AC;&gt;</a>",
                "<a b=\"&lt;&#xA;&quot;\">&amp;€&gt;</a>"},
           Case{"numbers 128 to 159 are of windows-1252", "<a>&#150;</a>", "<a>–</a>"},
           Case{"a section", "<a><![CDATA[<&]]></a>", "<a>&lt;&amp;</a>"},
           Case{"comments inside do not stay", "<a>x<!-- c -->y</a>", "<a>xy</a>"},
           Case{"instructions stay", "<?p d?><a><?q?></a><?r?>", "<?p d?>\n<a><?q?></a>\n<?r?>"},
           Case{"an entity of the document", "<!DOCTYPE a [<!ENTITY e 'x&#38;amp;y'>]><a>&e;</a>",
                "<a>x&amp;y</a>"},
           Case{"an entity in an entity",
                "<!DOCTYPE a [<!ENTITY e 'x'><!ENTITY f '&e;&e;'>]><a b='&f;'>&f;</a>",
                "<a b=\"xx\">xx</a>"},
           Case{"white space in values", "<a b='x\n\ty'/>", "<a b=\"x  y\"></a>"},
           Case{"names beyond ASCII", "<größe é='1'/>", "<größe é=\"1\"></größe>"},
           Case{"a script that is not HTML's keeps its markup", "<script><b/></script>",
                "<script><b></b></script>"},
       }) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(canonical(input, kTidyBoth), output);
    EXPECT_EQ(canonical(input, kNoTidying), output);
  }
}

TEST(NSXMLDocument, WhatIsNotWellFormedIsHTMLOrAnError) {
  for (const char* input : {"x",
                            "<a>",
                            "<a></b>",
                            "<a></a><b/>",
                            "<a/>x",
                            "<a b=c/>",
                            "<a b='1' b='2'/>",
                            "<a b='<'/>",
                            "<a>&nbsp;</a>",
                            "<a>]]></a>",
                            "<a><!-- -- --></a>",
                            "<p:a/>",
                            "<a p:b='1'/>",
                            "<a xmlns:p=''/>",
                            "<a xmlns:xml='u'/>",
                            "<a:b:c xmlns:a='u'/>",
                            "<1/>",
                            "<a>&#0;</a>",
                            "<a>&#xFFFF;</a>",
                            "<?xml?><a/>",
                            " <?xml version='1.0'?><a/>",
                            "<a><?xml x?></a>",
                            "<!DOCTYPE a PUBLIC 'p'><a/>",
                            "<!DOCTYPE a [<!ENTITY % p ''>%p;]><a/>",
                            "<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]><a>&e;</a>",
                            "<!DOCTYPE a [<!ENTITY e '<b/>'>]><a>&e;</a>",
                            "<a",
                            "<a b",
                            "<a b='",
                            "<![CDATA[x]]>",
                            "<a><![CDATA[x</a>",
                            "<!DOCTYPE a>",
                            "<x xmlns:p='u' xmlns:q='u' p:a='' q:a=''/>"}) {
    SCOPED_TRACE(input);
    EXPECT_EQ(errorOf(data(input), kNoTidying)->code(), NSXMLParserNotWellFormedError);
    EXPECT_TRUE(
        canonical(input, kTidyBoth)
            .starts_with(
                "<html xmlns=\"http://www.w3.org/1999/xhtml\"><head><title></title></head><body"));
  }
}

/// A document whose entities e0, e1 … are each three times as long as the one before; e0 is ten.
std::string tripling(int entities, const std::string& content) {
  std::string xml = "<!DOCTYPE a [<!ENTITY e0 'xxxxxxxxxx'>";
  for (int i = 1; i < entities; ++i) {
    const std::string before = "&e" + std::to_string(i - 1) + ";";
    xml += "<!ENTITY e" + std::to_string(i) + " '" + before + before + before + "'>";
  }
  return xml + "]><a>" + content + "</a>";
}

TEST(NSXMLDocument, EntitiesDoNotGrowWithoutBound) {
  EXPECT_EQ(canonical(tripling(10, "&e2;"), kTidyBoth), "<a>" + std::string(90, 'x') + "</a>");
  EXPECT_TRUE(errorOf(data(tripling(30, "")), kNoTidying)) << "declared";
  std::string many;
  for (int i = 0; i < 1000; ++i) many += "&e6;";
  EXPECT_TRUE(errorOf(data(tripling(10, many)), kNoTidying)) << "used";
}

TEST(NSXMLDocument, XHTMLIsTakenAsItIsWithoutTheXMLOption) {
  const std::string xhtml =
      "<html xmlns=\"http://www.w3.org/1999/xhtml\"><body> <p>a  b</p>\n</body></html>";
  EXPECT_EQ(canonical(xhtml, kTidyHTML), xhtml);
  EXPECT_EQ(canonical("<x:html xmlns:x='http://www.w3.org/1999/xhtml'/>", kTidyHTML),
            "<x:html xmlns:x=\"http://www.w3.org/1999/xhtml\"></x:html>");
}

TEST(NSXMLDocument, WhatBelongsToTheHeadIsEmptyElsewhereInXHTMLWithoutTheXMLOption) {
  const std::string head =
      "<html xmlns=\"http://www.w3.org/1999/xhtml\"><head><title>a</title>"
      "<style>b</style></head><body>";
  const std::string xhtml = head +
                            "<style a=\"b\">c<b>d</b><?e f?><!-- g --></style>h<title>i"
                            "</title><svg xmlns=\"http://www.w3.org/2000/svg\"><style>j"
                            "</style><script>k</script><title>l</title></svg></body></html>";
  EXPECT_EQ(canonical(xhtml, kTidyHTML),
            head +
                "<style a=\"b\"></style>h<title></title>"
                "<svg xmlns=\"http://www.w3.org/2000/svg\"><style></style><script></script>"
                "<title>l</title></svg></body></html>");
  auto document = parsed(
      "<html xmlns='http://www.w3.org/1999/xhtml'><style><!-- a --></style></html>", kTidyHTML);
  EXPECT_EQ(document->canonicalXMLStringPreservingComments(true)->lossyUTF8(),
            "<html xmlns=\"http://www.w3.org/1999/xhtml\"><style></style></html>");
  std::string asItIs = xhtml;
  asItIs.erase(asItIs.find("<!-- g -->"), 10);
  EXPECT_EQ(canonical(xhtml, kTidyBoth), asItIs);
}

TEST(NSXMLDocument, OtherXMLIsHTMLWithoutTheXMLOption) {
  EXPECT_EQ(bodyOf("<note> a  b <c/></note>"), "<note>a b<c></c></note>");
  EXPECT_EQ(bodyOf("<html><body><p>a</p><p>b</p></body></html>"), "<p>a</p>\n<p>b</p>");
}

// ---- Documents without anything ----

TEST(NSXMLDocument, CommentsAndInstructionsAloneAreADocumentWithoutARoot) {
  for (const char* input : {"<!-- c -->", "<?p?>", "<?xml version='1.0'?>\n<!-- c --><?p d?>\n"}) {
    SCOPED_TRACE(input);
    auto document = parsed(input, kTidyBoth);
    EXPECT_FALSE(document->rootElement());
    EXPECT_EQ(canonical(document), "");
    EXPECT_TRUE(parsed(input, kTidyHTML)->rootElement());
  }
}

TEST(NSXMLDocument, NoBytesAreAnEmptyDocumentsError) {
  for (const std::uint64_t options : {kTidyBoth, kTidyHTML, kNoTidying}) {
    for (const Ref<NSData>& bytes : {Ref<NSData>(), NSData::data()}) {
      auto error = errorOf(bytes, options);
      EXPECT_EQ(text(error->domain()), "NSXMLParserErrorDomain");
      EXPECT_EQ(error->code(), 4);
    }
  }
  EXPECT_FALSE(NSXMLDocument::initWithData(nullptr, kTidyBoth, nullptr)) << "nobody asks";
}

// ---- Namespaces ----

TEST(NSXMLDocument, HTMLElementsAreInXHTMLWhateverIsDeclared) {
  EXPECT_EQ(canonical("<html xmlns='urn:other'><p xmlns='urn:more'>x"),
            "<html xmlns=\"http://www.w3.org/1999/xhtml\"><head><title></title></head>"
            "<body><p>x</p></body></html>");
}

TEST(NSXMLDocument, SVGAndMathMLHaveNamespacesOfTheirOwn) {
  EXPECT_EQ(bodyOf("<svg><circle r=1 /><foreignObject><b>x</b></foreignObject></svg>y"),
            "<svg xmlns=\"http://www.w3.org/2000/svg\"><circle r=\"1\"></circle><foreignobject>"
            "<b xmlns=\"http://www.w3.org/1999/xhtml\">x</b></foreignobject></svg>y");
  EXPECT_EQ(bodyOf("<math><mi>x</mi></math>"),
            "<math xmlns=\"http://www.w3.org/1998/Math/MathML\"><mi>x</mi></math>");
}

// ---- Canonical form ----

TEST(NSXMLDocument, TheCanonicalFormSortsAndEscapes) {
  EXPECT_EQ(
      canonical("<a xmlns:z='1' xmlns:b='2' z:k='' b:k='' m='' a='&#13;&#9;'>&#13;</a>", kTidyBoth),
      "<a xmlns:b=\"2\" xmlns:z=\"1\" a=\"&#xD;&#x9;\" m=\"\" z:k=\"\" b:k=\"\">&#xD;</a>");
}

TEST(NSXMLDocument, TheCanonicalFormDeclaresNothingTwice) {
  EXPECT_EQ(canonical("<a xmlns:p='u'><b xmlns:p='u'><p:c xmlns:p='v'/></b><p:d/></a>", kTidyBoth),
            "<a xmlns:p=\"u\"><b><p:c xmlns:p=\"v\"></p:c></b><p:d></p:d></a>");
}

TEST(NSXMLDocument, TheCanonicalFormKeepsCommentsWhenAsked) {
  auto document = parsed("<!--a--><x>b<!--c--></x><!--d-->", kTidyBoth);
  EXPECT_EQ(text(document->canonicalXMLStringPreservingComments(true)),
            "<!--a-->\n<x>b<!--c--></x>\n<!--d-->");
}

TEST(NSXMLDocument, TheCanonicalFormParsesBackToItself) {
  for (const char* input :
       {"", "x", "<p>a<p>b", "<pre>&#13;\n x</pre>", "<table><tr>x<td>y", "<svg><a><![CDATA[&]]>",
        "<p id=1 CLASS='a&quot;b' xml:lang=de x:y=z>&lt;&amp;", "<body onload=x><title>t&amp;",
        "<script>a<b&c</script><style>p{}</style>", "<x><y><z>", "<a xmlns:p='u'><p:b/></a>"}) {
    SCOPED_TRACE(input);
    const std::string first = canonical(std::string(input) + " ", kTidyHTML);
    EXPECT_EQ(canonical(first, kTidyHTML), first);
  }
}

// ---- Written for people ----

TEST(NSXMLDocument, PrettyPrintSetsInWhatHoldsNoText) {
  auto document = parsed("<!DOCTYPE html><!--a--b---><ul><li>x<b>y</b></ul>");
  EXPECT_EQ(text(document->XMLStringWithOptions(NSXMLNodePrettyPrint)),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<!DOCTYPE html>\n"
            "<html xmlns=\"http://www.w3.org/1999/xhtml\">\n"
            "    <head>\n"
            "        <title/>\n"
            "    </head>\n"
            "    <body>\n"
            "        <!--a- -b- -->\n"
            "        <ul>\n"
            "            <li>x<b>y</b></li>\n"
            "        </ul>\n"
            "    </body>\n"
            "</html>");
}

TEST(NSXMLDocument, WithoutOptionsTheXMLStaysOnItsLines) {
  auto document = parsed("<a b='1'> <c/><?p d?></a>", kTidyBoth);
  EXPECT_EQ(text(document->XMLStringWithOptions(0)),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a b=\"1\"> <c/><?p d?></a>");
  EXPECT_EQ(text(document->rootElement()->XMLStringWithOptions(0)), "<a b=\"1\"> <c/><?p d?></a>");
}

// ---- The seam ----

TEST(NSXMLDocument, ADoubleAnswersInThePlaceOfTheEngine) {
  class Failing final : public XMLProcessing {
    Ref<NSXMLDocument> documentWithData(NSData*, std::uint64_t, Ref<NSError>* error) override {
      if (error) *error = posixError(5);
      return nullptr;
    }
  } failing;
  EXPECT_TRUE(XMLProcessing::current().isSystem());
  const ScopedService<XMLProcessing> installed(failing);
  EXPECT_FALSE(XMLProcessing::current().isSystem());
  EXPECT_EQ(errorOf(data("<a/>"), kTidyBoth)->code(), 5);
}

}  // namespace
}  // namespace kbx
