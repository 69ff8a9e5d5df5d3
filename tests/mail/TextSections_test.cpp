#include "mail/TextSections.h"

#include <gtest/gtest.h>

#include "tests/mail/Messages.h"

namespace kbx {
namespace {

std::string part(std::string_view type, std::string_view body) {
  return "--b\nContent-Type: " + std::string(type) + "\n\n" + std::string(body) + "\n";
}

/// "plain text ~ HTML" of a multipart with these parts, line ends left out.
std::string both(std::string_view kind, std::string_view parts) {
  MessageContent content = contentOf("Content-Type: multipart/" + std::string(kind) +
                                     "; boundary=b\n\n" + std::string(parts) + "--b--\n");
  const BodyText text = content.sections.take();
  std::string result = text.plain + " ~ " + text.html;
  std::erase(result, '\n');
  return result;
}

TEST(TextSections, PlainPartsAreTheText) {
  EXPECT_EQ(both("mixed", part("text/plain", "one") + part("text/plain", "two")), "onetwo ~ ");
}

TEST(TextSections, ASectionInHTMLAloneMakesOneHTMLTextOfAll) {
  EXPECT_EQ(both("mixed", part("text/plain", "a < b") + part("text/html", "<p>two") +
                              part("text/plain", "three")),
            " ~ <pre>a &lt; b</pre><p>two<pre>three</pre>");
}

TEST(TextSections, AnAlternativeWithTheSameWordsHasBothForms) {
  EXPECT_EQ(both("alternative", part("text/plain", "one two") + part("text/html", "<p>one two")),
            "one two ~ <p>one two");
}

TEST(TextSections, WordsInHTMLAloneAreNotLost) {
  EXPECT_EQ(both("alternative", part("text/plain", "one") + part("text/html", "<p>one two")),
            " ~ <p>one two");
}

TEST(TextSections, WordsInPlainTextAloneAreNotLostEither) {
  EXPECT_EQ(both("alternative", part("text/plain", "see below") + part("text/html", "<p>one two")),
            " ~ <pre>see below</pre><p>one two");
}

TEST(TextSections, SeveralFormsOfAKindAreKeptWhereTheirWordsDiffer) {
  EXPECT_EQ(both("alternative", part("text/plain", "one") + part("text/plain", "two")),
            "onetwo ~ ");
  EXPECT_EQ(both("alternative", part("text/plain", "one two") + part("text/plain", "two")),
            "one two ~ ");
  EXPECT_EQ(both("alternative", part("text/plain", "one") + part("text/plain", "one two")),
            "one two ~ ");
  EXPECT_EQ(both("alternative", part("text/html", "<i>one") + part("text/html", "<b>one")),
            " ~ <i>one");
  EXPECT_EQ(both("alternative", part("text/html", "<i>one") + part("text/html", "<b>two")),
            " ~ <i>one<b>two");
}

TEST(TextSections, FormsMayHavePartsOfTheirOwn) {
  const std::string related =
      "--b\nContent-Type: multipart/related; boundary=c\n\n--c\nContent-Type: text/html\n\n<p>one\n"
      "--c\nContent-Type: image/png\n\nxyz\n--c--\n";
  EXPECT_EQ(both("alternative", part("text/plain", "one") + related), "one ~ <p>one");
}

TEST(TextSections, AnAlternativeOfOneFormIsThatForm) {
  EXPECT_EQ(both("alternative", part("text/html", "<p>x")), " ~ <p>x");
  EXPECT_EQ(both("alternative", part("text/plain", "x") + part("text/calendar", "BEGIN")), "x ~ ");
  EXPECT_EQ(both("alternative", part("text/plain", "") + part("text/html", "<p>x")), " ~ <p>x");
  EXPECT_EQ(both("alternative", ""), " ~ ");
}

TEST(TextSections, ManyNeighboursAreFewSections) {
  TextSections sections;
  for (int i = 0; i < 10000; ++i) sections.addPlain("x");
  EXPECT_EQ(sections.sections().size(), 1u);
  for (int i = 0; i < 10000; ++i) sections.addHTML("<p>");
  EXPECT_LT(sections.sections().size(), 5000u);
}

TEST(TextSections, WhatHTMLLeavesOpenHidesNoLaterSection) {
  EXPECT_EQ(both("mixed", part("text/html", "a<!-- b") + part("text/plain", "c")),
            " ~ a<!-- b--><pre>c</pre>");
  EXPECT_EQ(both("mixed", part("text/html", "a<style>b") + part("text/html", "c<p d='") +
                              part("text/html", "e<p")),
            " ~ a<style>b</style>c<p d='\"'>e<p");
}

TEST(TextSections, BlankTextIsNoSection) {
  TextSections sections;
  sections.addPlain(" \r\n\t");
  sections.addHTML("\n");
  EXPECT_TRUE(sections.isEmpty());
}

}  // namespace
}  // namespace kbx
