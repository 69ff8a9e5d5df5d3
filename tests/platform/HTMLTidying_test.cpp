// What the tidying parse makes of HTML: its tags, its structure and its text.
#include <gtest/gtest.h>

#include "tests/support/Markup.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using namespace test;

struct Case {
  const char* rule;
  std::string input;
  std::string output;
};

void expectText(std::initializer_list<Case> cases) {
  for (const auto& [rule, input, output] : cases) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(visibleText(input), output);
  }
}

void expectBody(std::initializer_list<Case> cases) {
  for (const auto& [rule, input, output] : cases) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(bodyOf(input), output);
  }
}

// ---- The frame of a document ----

TEST(HTMLTidying, HTMLHeadTitleAndBodyAlwaysExist) {
  const std::string frame =
      "<html "
      "xmlns=\"http://www.w3.org/1999/xhtml\"><head><title></title></head><body></body></html>";
  for (const char* input : {" ", "<html>", "<head></head>", "<body>", "</p></div>", "<!doctype x>"})
    EXPECT_EQ(canonical(std::string(input) + "</html>"), frame) << input;
}

TEST(HTMLTidying, TheFirstHTMLAndBodyTagsGiveTheirAttributes) {
  EXPECT_EQ(canonical("<html lang=de><body id=a><html lang=fr><body class=b>x"),
            "<html xmlns=\"http://www.w3.org/1999/xhtml\" lang=\"de\"><head><title></title></head>"
            "<body id=\"a\">x</body></html>");
}

TEST(HTMLTidying, WhatBelongsToTheHeadMovesThere) {
  const std::string input =
      "<div>a<title>T &amp; U</title><meta name=m><link rel=l><base href=b>"
      "<style>p>a{}</style>b</div>";
  EXPECT_EQ(headOf(input),
            "<title>T &amp; U</title><meta name=\"m\"></meta><link rel=\"l\"></link>"
            "<base href=\"b\"></base><style>p&gt;a{}</style>");
  EXPECT_EQ(bodyOf(input), "<div>ab</div>");
}

TEST(HTMLTidying, ScriptsStayWhereTheyAre) {
  EXPECT_EQ(headOf("<script>a</script>x<script>b</script>"), "<title></title><script>a</script>");
  EXPECT_EQ(bodyOf("<script>a</script>x<script>b</script>"), "x<script>b</script>");
}

// ---- Tags ----

TEST(HTMLTidying, OddTagsKeepTheTextInside) {
  expectText({
      {"a prefix", "<o:p>a</o:p>b", "ab"},
      {"an address", "<user@host>a", "a"},
      {"a name that nobody knows", "<blah>a</blah>b", "ab"},
      {"a name that XML has not", "<a\"b>c", "c"},
      {"no name", "a <3 b < c <> d </> e", "a <3 b < c <> d e"},
      {"an end tag alone", "a</b>b</blah></o:p>", "ab"},
      {"a tag at the end of the document", "a<b", "a"},
      {"its start at the end", "a<", "a<"},
      {"an end tag's start at the end", "a</", "a</"},
      {"a quote that never ends", "a<b c='d>e", "a"},
      {"an attribute with a tag's end", "<b c='>'>a", "a"},
      {"a quote in an attribute's name", "<b c\">a", "a"},
      {"an equals sign first", "<b =c>a", "a"},
      {"an end tag with attributes", "<b>a</b c='>'>d", "ad"},
  });
}

TEST(HTMLTidying, WhatIsNoElementNeverBecomesText) {
  expectText({
      {"a comment", "a<!-- b -->c", "ac"},
      {"a comment with dashes", "a<!-- -- -- b -->c", "ac"},
      {"a comment that ends at once", "a<!-->b<!--->c", "abc"},
      {"a comment with a mark at its end", "a<!-- b --!>c", "ac"},
      {"a comment that never ends", "a<!-- b", "a"},
      {"a condition", "a<![if !x]>b<![endif]>c", "abc"},
      {"a condition in a comment", "a<!--[if mso]><p>b</p><![endif]-->c", "ac"},
      {"a condition that shows", "<!--[if !mso]><!-->a<!--<![endif]-->b", "ab"},
      {"a declaration", "a<!x y>b", "ab"},
      {"a document type in the text", "a<!DOCTYPE b>c", "ac"},
      {"an instruction", "a<?b c?>d", "ad"},
      {"an instruction without a question mark", "a<?xml:namespace prefix = o />b ?> c", "ab ?> c"},
      {"a program with an operator", "a<?php if (b > c) d(\"<p>\"); ?>e", "ae"},
      {"a program's value", "a<?= b > c ?>d", "ad"},
      {"two instructions of two kinds", "a<?b>c<?d?>e", "ace"},
      {"an instruction that never ends", "a<?b c", "a"},
      {"a server's code", "a<% if b < c > d %>e", "ae"},
      {"a server's code that never ends is text", "a <% b", "a <% b"},
      {"a section", "a<![CDATA[b]]>c", "ac"},
      {"an end tag of nothing", "a</ b>c", "ac"},
  });
}

TEST(HTMLTidying, CommentsStayInTheDocument) {
  auto document = parsed("<p><!--a--b-->");
  EXPECT_NE(text(document->XMLStringWithOptions(0)).find("<p><!--a- -b--></p>"), std::string::npos);
}

TEST(HTMLTidying, AttributesAreMadeXML) {
  expectBody({
      {"the first of a name counts", "<p ID=1 id=2>", "<p id=\"1\"></p>"},
      {"without a value", "<p hidden>", "<p hidden=\"\"></p>"},
      {"references", "<p a='&lt;&copy=1&amp;b'>", "<p a=\"&lt;&amp;copy=1&amp;b\"></p>"},
      {"white space stays", "<p a=' b\n c'>", "<p a=\" b&#xA; c\"></p>"},
      {"names that XML has not", "<p a\"b=1 1=2 <=3 ok=4>", "<p ok=\"4\"></p>"},
      {"namespaces and prefixes", "<p xmlns=a xmlns:b=c b:d=e xml:lang=f>",
       "<p xml:lang=\"f\"></p>"},
      {"a slash in a value", "<p a=b/>c", "<p a=\"b/\">c</p>"},
  });
}

// ---- Structure ----

TEST(HTMLTidying, ElementsEndWhereTheyMust) {
  expectBody({
      {"paragraphs", "<p>a<p>b", "<p>a</p>\n<p>b</p>"},
      {"a block ends a paragraph", "<p>a<div>b</div>", "<p>a</p>\n<div>b</div>"},
      {"a paragraph in a cell ends none outside", "<p>a<table><td><p>b</table>c",
       "<p>a</p>\n<table><td><p>b</p></td></table>\nc"},
      {"list items", "<ul><li>a<li>b</ul>", "<ul><li>a</li>\n<li>b</li></ul>"},
      {"a list in a list item", "<ul><li>a<ul><li>b</ul><li>c</ul>",
       "<ul><li>a\n<ul><li>b</li></ul></li>\n<li>c</li></ul>"},
      {"an item through a division", "<li><div>a<li>b", "<li><div>a</div></li>\n<li>b</li>"},
      {"terms and definitions", "<dl><dt>a<dd>b<dt>c</dl>",
       "<dl><dt>a</dt>\n<dd>b</dd>\n<dt>c</dt></dl>"},
      {"rows and cells", "<table><tr><td>a<th>b<tr><td>c</table>",
       "<table><tr><td>a</td>\n<th>b</th></tr>\n<tr><td>c</td></tr></table>"},
      {"parts of a table", "<table><thead><tr><td>a<tbody><tr><td>b</table>",
       "<table><thead><tr><td>a</td></tr></thead>\n<tbody><tr><td>b</td></tr></tbody></table>"},
      {"a table in a cell", "<table><td>a<table><tr><td>b</table><td>c</table>",
       "<table><td>a\n<table><tr><td>b</td></tr></table></td>\n<td>c</td></table>"},
      {"options", "<select><option>a<option>b<optgroup><option>c</select>",
       "<select><option>a</option>\n<option>b</option>\n<optgroup><option>c</option></optgroup>"
       "</select>"},
      {"headings", "<h1>a<h2>b</h1>c", "<h1>a</h1>\n<h2>b</h2>\nc"},
      {"a heading in another", "<h1><div><h2>a</h2>b</div>c</h1>d",
       "<h1><div><h2>a</h2>\nb</div>\nc</h1>\nd"},
      {"anchors", "<a>a<a>b", "<a>a</a><a>b</a>"},
      {"forms", "<form>a<form>b</form>c", "<form>a\nb</form>\nc"},
      {"void elements", "<img>a<hr>b</img>", "<img></img>a<hr></hr>\nb"},
      {"an end tag that is a break", "a</br>b", "a<br></br>\nb"},
      {"overlapping inline elements", "<b><i>a</b>b</i>c", "<b><i>a</i></b>bc"},
      {"an inline end tag does not end a block", "<b><p>a</b>b</p>c", "<b><p>ab</p>\nc</b>"},
      {"an end tag in a cell", "<div><table><td></div>a</table>b",
       "<div><table><td>a</td></table>\nb</div>"},
      {"text after the end", "<body>a</body></html>b", "a\nb"},
      {"a self-closing element of an unknown name", "<x/>a", "<x></x>a"},
  });
}

TEST(HTMLTidying, TextInATableStaysInItsPlace) {
  expectText({
      {"between rows", "<table>a<tr>b<td>c</td>d</tr>e</table>f", "a\nb\nc\nd\ne\nf"},
      {"cells without a table", "<td>a</td><tr>b</tr>", "a\nb"},
  });
}

TEST(HTMLTidying, RawElementsHoldNoMarkup) {
  expectText({
      {"a script", "a<script>b<c></script>d", "ad"},
      {"a script with a comment", "a<script><!-- <script>b</script> c --></script>d", "ad"},
      {"a script whose comment does not end", "a<script><!-- b</script>c", "ac"},
      {"a style", "a<style>b<!-- </style>c", "ac"},
      {"a title", "<title>a<b></title>c", "c"},
      {"a text field", "a<textarea>b<c>&lt;</textarea>d", "ab<c><d"},
      {"an example", "<xmp>a<b>&lt;</xmp>c", "a<b>&lt;\nc"},
      {"plain text to the end", "a<plaintext>b<c></plaintext>", "a\nb<c></plaintext>"},
      {"an end tag of another name", "a<script></scripts></script >b", "ab"},
  });
}

TEST(HTMLTidying, WhatStandsInForAnotherThingIsMarkup) {
  for (const std::string name : {"iframe", "noembed", "noscript"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(bodyOf("<" + name + "><b>a</b></" + name + ">"),
              "<" + name + "><b>a</b></" + name + ">");
  }
  EXPECT_EQ(bodyOf("<noframes><p>a</noframes>"), "<noframes><p>a</p></noframes>");
}

TEST(HTMLTidying, NothingReachesOutOfNoframes) {
  expectText({
      {"a blank for it", "a<noframes>b</noframes>c", "a \nc"},
      {"blocks in it", "<p>a<noframes></p><p>b</table></noframes>c", "a \nc"},
      {"in a table", "<table><td>a<noframes></td><td></table>b</noframes><td>c", "a \nc"},
      {"one in another", "a<noframes>b<noframes>c</noframes>d</noframes>e", "a \ne"},
      {"without an end", "a<noframes>b", "a "},
      {"a body in it", "<frameset><noframes><body>a</body></noframes></frameset>", " "},
  });
}

TEST(HTMLTidying, ForeignContentEndsWhereHTMLBegins) {
  expectBody({
      {"a paragraph", "<svg><g>a<p>b",
       "<svg xmlns=\"http://www.w3.org/2000/svg\"><g>a</g></svg>\n<p>b</p>"},
      {"a section", "<svg><![CDATA[a<b]]>",
       "<svg xmlns=\"http://www.w3.org/2000/svg\">a&lt;b</svg>"},
      {"its title stays", "<svg><title>a</title></svg>",
       "<svg xmlns=\"http://www.w3.org/2000/svg\"><title>a</title></svg>"},
      {"a script is HTML's", "<svg><script>a<b</script></svg>",
       "<svg xmlns=\"http://www.w3.org/2000/svg\"><script xmlns=\"http://www.w3.org/1999/xhtml\">"
       "a&lt;b</script></svg>"},
      {"a script and a style that end in their own tags", "<svg><script/>a<style/>b</svg>c",
       "<svg xmlns=\"http://www.w3.org/2000/svg\"><script></script>a<style></style>b</svg>c"},
      {"an end tag", "<div><svg><g></div>a",
       "<div><svg xmlns=\"http://www.w3.org/2000/svg\"><g></g></svg></div>a"},
  });
}

// ---- White space ----

TEST(HTMLTidying, WhiteSpaceIsMadeEven) {
  expectText({
      {"runs become one blank", "a \t\n  b", "a b"},
      {"across inline elements", "a <b> b </b> c", "a b c"},
      {"none at the ends of blocks", "<p> a </p> <p> b </p> ", "a\nb"},
      {"none before a break", "a <br> b", "a\nb"},
      {"by a reference, too", "a &#32; &#10; b", "a b"},
      {"a hard blank is no white space", "a&nbsp; &nbsp;b", "a\u00A0 \u00A0b"},
      {"inline elements never part", "a<b>b</b><span>c</span><a>d</a><img>e", "abcde"},
      {"in long text",
       "Lorem ipsum dolor sit amet,  consectetur\nadipiscing elit, sed do\t\t eiusmod",
       "Lorem ipsum dolor sit amet, consectetur adipiscing elit, sed do eiusmod"},
      {"blanks at every place of a block", "a b c d e f g  h i j k l m n  o p q r s t u v  w x y z",
       "a b c d e f g h i j k l m n o p q r s t u v w x y z"},
      {"a form feed", "a\fb", "a b"},
  });
}

TEST(HTMLTidying, EveryRunOfEveryLengthAtEveryPlaceBecomesOneBlank) {
  for (std::size_t place = 1; place < 36; ++place)
    for (std::size_t length = 1; length < 20; ++length) {
      const std::string word(place, 'x');
      ASSERT_EQ(visibleText(word + std::string(length, ' ') + "y"), word + " y");
      ASSERT_EQ(visibleText(word + std::string(length, '\n') + "y"), word + " y");
    }
}

TEST(HTMLTidying, OneLineFeedPartsBlocks) {
  expectText({
      {"paragraphs", "<p>a</p><p>b</p>", "a\nb"},
      {"text and a block", "a<div>b</div>c", "a\nb\nc"},
      {"many ends and starts", "<div><div><p>a</p></div></div><div><div>b", "a\nb"},
      {"cells and rows", "<table><tr><td>a</td><td>b</td></tr><tr><td>c</td></tr></table>",
       "a\nb\nc"},
      {"list items", "<ul><li>a</li><li>b</li></ul>", "a\nb"},
      {"a line", "a<hr>b", "a\nb"},
      {"a break", "a<br>b", "a\nb"},
      {"two breaks", "a<br><br>b", "a\n\nb"},
      {"a break with its end tag", "a<br></br>b", "a\nb"},
      {"a break and another's end tag", "a<br> </br>b", "a\n\nb"},
      {"a break in XML of no namespace", "<a>b<br/>c</a>", "b\nc"},
      {"a break at the end of a block", "<p>a<br></p><p>b", "a\nb"},
      {"empty blocks", "a<p></p><p> </p><div></div>b", "a\nb"},
      {"nothing around the whole", "<br><p>a</p><br>", "a"},
      {"an end tag of a block alone", "a</p>b", "a\nb"},
      {"script and comments part nothing", "a<script>x</script><!-- y -->b", "ab"},
  });
}

TEST(HTMLTidying, PreformattedTextStaysAsItIs) {
  expectText({
      {"blanks and lines", "<pre>a  b\n\n c </pre>d", "a  b\n\n c \nd"},
      {"its first line feed does not count", "<pre>\na</pre>", "a"},
      {"its last line feed parts", "<pre>a\n</pre>b", "a\nb"},
      {"elements in it", "<pre>a <b> b</b></pre>", "a  b"},
      {"a text field", "a <textarea>\n b\n  c </textarea>", "a  b\n  c "},
  });
}

// ---- What the whole chain keeps ----

TEST(HTMLTidying, HiddenTextDoesNotShow) {
  expectText({
      {"the head", "<html><head><title>a</title></head><body>b</body></html>", "b"},
      {"the head of XHTML",
       "<html xmlns='http://www.w3.org/1999/xhtml'><head><title>a</title></head><body>b</body>"
       "</html>",
       "b"},
      {"a style in the body", "a<style>b</style>c", "ac"},
      {"a script in the body", "a<script>b</script>c", "ac"},
      {"a title in the body", "a<title>b</title>c", "ac"},
      {"a style in the body of XHTML",
       "<html xmlns='http://www.w3.org/1999/xhtml'><body>a<style>b</style>c</body></html>", "ac"},
      {"a script in the body of XHTML",
       "<html xmlns='http://www.w3.org/1999/xhtml'><body>a<script>b</script>c</body></html>", "ac"},
      {"a title in the body of XHTML",
       "<html xmlns='http://www.w3.org/1999/xhtml'><body>a<title>b</title>c</body></html>", "ac"},
      {"a style with a prefix",
       "<h:html xmlns:h='http://www.w3.org/1999/xhtml'>a<h:style>b<![CDATA[c]]></h:style>d"
       "</h:html>",
       "ad"},
      {"elements in a style",
       "<html xmlns='http://www.w3.org/1999/xhtml'>a<style>b<p>c</p>d<noframes/></style>e</html>",
       "ae"},
      {"a style in what is shown without frames",
       "<html xmlns='http://www.w3.org/1999/xhtml'>a<noframes>b<style>c</style>d</noframes>e"
       "</html>",
       "a e"},
      {"a style and a script of SVG in XHTML",
       "<html xmlns='http://www.w3.org/1999/xhtml'>a<svg xmlns='http://www.w3.org/2000/svg'>"
       "<style>b</style><script>c</script><text>d</text></svg>e</html>",
       "ade"},
      {"the head of no namespace is HTML in the end", "<html><head><title>a</title></head></html>",
       ""},
      {"nothing at all", "<p> </p>", ""},
      {"comments alone", "<!-- a -->", ""},
  });
}

TEST(HTMLTidying, ElementsOutsideXHTMLShowTheirText) {
  EXPECT_EQ(visibleText("<h:html xmlns:h='http://www.w3.org/1999/xhtml'><head>a</head>"
                        "<script>b</script><h:script>c</h:script><style>d</style></h:html>"),
            "abd");
}

}  // namespace
}  // namespace kbx
