#include "mail/ContentField.h"

#include <gtest/gtest.h>

#include "tests/mail/Messages.h"

namespace kbx {
namespace {

std::string parameter(std::string_view raw, std::string_view name = "name") {
  TextDecoder decoder;
  return ContentField(raw).text(name, decoder);
}

TEST(ContentField, TheValueIsInSmallLettersAndEndsBeforeParametersAndComments) {
  EXPECT_EQ(ContentField(" Text/HTML; charset=x").value(), "text/html");
  EXPECT_EQ(ContentField("text/plain (a; comment)").value(), "text/plain");
  EXPECT_EQ(ContentField("text/plain charset=x").value(), "text/plain");
  EXPECT_EQ(ContentField("").value(), "");
}

TEST(ContentField, ParametersAreFoundQuotedOrNot) {
  EXPECT_EQ(parameter("a/b; name=c.txt"), "c.txt");
  EXPECT_EQ(parameter("a/b;NAME = \"c; d.txt\" ; x=y"), "c; d.txt");
  EXPECT_EQ(parameter("a/b; name=two words.txt; x=y"), "two words.txt");
  EXPECT_EQ(parameter("a/b; name=\"say \\\"c\\\"\""), "say \"c\"");
  EXPECT_EQ(parameter("a/b;; ;name=c"), "c");
  EXPECT_EQ(parameter("a/b; x=\"y\" junk; name=c"), "c");
}

TEST(ContentField, AMissingQuoteEndsWithTheValue) {
  EXPECT_EQ(parameter("a/b; name=\"c.txt"), "c.txt");
}

TEST(ContentField, TheSemicolonBeforeAUsualParameterMayBeMissing) {
  EXPECT_EQ(parameter("text/plain charset=x", "charset"), "x");
  EXPECT_EQ(parameter("text/plain; charset=x format=flowed", "charset"), "x");
  EXPECT_EQ(parameter("text/plain; charset=x format=flowed", "format"), "flowed");
  EXPECT_EQ(parameter("attachment; size=3 filename=\"a.txt\"", "filename"), "a.txt");
  EXPECT_EQ(parameter("a/b; x=\"y\" name*=''c%20d"), "c d");
  EXPECT_EQ(parameter("a/b; name=my name and type.txt"), "my name and type.txt");
}

TEST(ContentField, TheFirstOfANameWins) { EXPECT_EQ(parameter("a/b; name=c; name=d"), "c"); }

TEST(ContentField, ExtendedFormsHaveACharsetAndEscapes) {
  EXPECT_EQ(parameter("a/b; name*=utf-8'fr'caf%C3%A9.txt"), "café.txt");
  EXPECT_EQ(parameter("a/b; name*=iso-8859-1''caf%E9.txt"), "café.txt");
  EXPECT_EQ(parameter("a/b; name*=''50%zz"), "50%zz");
  EXPECT_EQ(parameter("a/b; name=plain; name*=utf-8''caf%C3%A9"), "café");
}

TEST(ContentField, PiecesAreJoinedByTheirNumbers) {
  EXPECT_EQ(parameter("a/b; name*1=\"b.txt\"; name*0=\"a\""), "ab.txt");
  EXPECT_EQ(parameter("a/b; name*0*=utf-8''caf%C3; name*1*=%A9; name*2=.txt"), "café.txt");
  EXPECT_EQ(parameter("a/b; name*0=a; name*0=x; name*1=b"), "ab");
}

TEST(ContentField, NamesOfEncodedWordsAndOfBytesAreText) {
  EXPECT_EQ(parameter("a/b; name=\"=?utf-8?q?caf=C3=A9?=.txt\""), "café.txt");
  EXPECT_EQ(parameter("a/b; name=\"caf\xC3\xA9\""), "café");
}

TEST(ContentField, ManyParametersCostTimeInProportion) {
  EXPECT_EQ(parameter("a/b; name=c; " + repeated("name*7=x;", 500000)).substr(0, 1), "x");
}

}  // namespace
}  // namespace kbx
