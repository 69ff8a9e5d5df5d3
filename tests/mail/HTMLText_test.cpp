#include "mail/HTMLText.h"

#include <gtest/gtest.h>

#include "tests/mail/Messages.h"

namespace kbx {
namespace {

TEST(HTMLText, PlainTextIsEscaped) {
  EXPECT_EQ(htmlFromPlainText("a < b && c > d\n"), "<pre>a &lt; b &amp;&amp; c &gt; d\n</pre>\n");
}

TEST(HTMLText, WhatIsOpenIsClosed) {
  EXPECT_EQ(closingOfHTML("<p>a<!-- b -- >"), "-->");
  EXPECT_EQ(closingOfHTML("<p>a<img src='b"), "\"'>");
  EXPECT_EQ(closingOfHTML("<SCRIPT x>a</p>"), "</script>");
  EXPECT_EQ(closingOfHTML("<style>a</styl"), "</style>");
  EXPECT_EQ(closingOfHTML("<title>a"), "</title>");
  EXPECT_EQ(closingOfHTML("<frameset><noframes><p>a"), "</noframes>");
  EXPECT_EQ(closingOfHTML("<textarea>a"), "</textarea>");
  EXPECT_EQ(closingOfHTML("<xmp>a"), "</xmp>");
  EXPECT_EQ(closingOfHTML("<p title=\"a > b"), "\"'>");
  EXPECT_EQ(closingOfHTML("<p>a<img src="), ">");
}

TEST(HTMLText, NothingIsClosedTwice) {
  for (std::string_view html : {"", "a", "<p>a", "a < b", "<!-- a -->b", "<style>a</style>b",
                                "<script>\"<!--\"</script>", "<titles>a", "a<", "<!doctype html>",
                                "<!-->a", "<!-- a --!>b", "I <3 you", "<p title=\"<!--\">a"})
    EXPECT_EQ(closingOfHTML(html), "") << html;
}

TEST(HTMLText, HostileMarkupCostsTimeInProportion) {
  for (std::string_view piece : {"<", "<!--", "<!---->", "<script>", "</", "<a", "<a>"})
    closingOfHTML(repeated(piece, 500000));
}

}  // namespace
}  // namespace kbx
