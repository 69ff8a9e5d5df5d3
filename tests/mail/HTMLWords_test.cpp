#include "mail/HTMLWords.h"

#include <gtest/gtest.h>

#include "tests/mail/Messages.h"

namespace kbx {
namespace {

bool plainHasAll(std::string_view plain, std::string_view html) {
  return hasAllWords(wordsOfText(plain), wordsOfHTML(html));
}

TEST(HTMLWords, WhatIsShownIsCompared) {
  EXPECT_TRUE(plainHasAll("Hello, world", "<p>Hello <b>world</b></p>"));
  EXPECT_FALSE(plainHasAll("Hello", "<p>Hello <b>world</b></p>"));
  EXPECT_TRUE(plainHasAll("hello WORLD", "<i>HELLO</i> world"));
}

TEST(HTMLWords, WhatIsHiddenIsNotCompared) {
  EXPECT_TRUE(plainHasAll("a",
                          "<title>t</title><style>x</style><script>y</style></script>a<!-- c -->"
                          "<img alt='d' src=e>"));
  EXPECT_TRUE(plainHasAll("a", "a<!-- open"));
  EXPECT_TRUE(plainHasAll("a", "a<p open"));
}

TEST(HTMLWords, WhatOnlyLooksHiddenIsCompared) {
  for (std::string_view html :
       {"a<!-->b", "a<!--->b", "a<!-- c --!>b", "a<img alt='> <!--'>b", "a <3 b", "<title/>a b",
        "a<img alt = \"> <style>\">b", "a<img alt=c'>b<i title='>", "a<!d e='>b<p title='>"})
    EXPECT_FALSE(plainHasAll("a", html)) << html;
}

TEST(HTMLWords, MarksWithinAWordDoNotPartIt) {
  EXPECT_TRUE(plainHasAll("word", "w<b>or</b>d"));
  EXPECT_FALSE(plainHasAll("word", "wo<td>rd"));
}

TEST(HTMLWords, EntitiesAreLettersAndPunctuation) {
  EXPECT_TRUE(plainHasAll("caf\xC3\xA9 a b", "caf&eacute;&nbsp;a&#160;b"));
  EXPECT_TRUE(plainHasAll("caf\xC3\xA9", "caf&#233; caf&#xE9;"));
  EXPECT_TRUE(plainHasAll("don't", "don&rsquo;t don\xE2\x80\x99t"));
  EXPECT_TRUE(plainHasAll("\xF0\x9F\x98\x80", "&#128512; &#x1F600;"));
  EXPECT_FALSE(plainHasAll("x", "x &#128512;"));
  EXPECT_FALSE(plainHasAll("x", "x&unknown;"));
  EXPECT_TRUE(plainHasAll("1 2", "1 < 2 & 1 <"));
}

TEST(HTMLWords, WhatIsTooLongToCompareHasNotAllWords) {
  const std::string text = repeated("a ", 3000000);
  EXPECT_FALSE(hasAllWords(wordsOfText(text), wordsOfText("a")));
  EXPECT_FALSE(hasAllWords(wordsOfText("a"), wordsOfHTML(text)));
}

TEST(HTMLWords, HostileMarkupCostsTimeInProportion) {
  for (std::string_view piece : {"<", "&", "<!--", "<script>", "</", "<a", "&a;"})
    wordsOfHTML(repeated(piece, 500000));
}

}  // namespace
}  // namespace kbx
