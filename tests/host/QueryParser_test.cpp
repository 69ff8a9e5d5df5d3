#include "host/search/QueryParser.h"

#include <gtest/gtest.h>

#include <string>

namespace kbx {
namespace {

TEST(QueryParser, AnOperatorMakesAQueryOfAttributes) {
  for (const char* text : {"kMDItemSubject == \"x\"", "a!=1", "a == 1 && b == 2", "x || y",
                           "size < 5", "size<5", "size >= 5", "a > $time.today", "InRange(a, 1, 2)",
                           "* == \"x\"", "kMDItemSubject = \"x\"", "org_ferncase_mail_size > -1",
                           "kMDItemFSSize >> 3", "kMDItemFSSize <> 3", "kMDItemFSSize > many"}) {
    SCOPED_TRACE(text);
    EXPECT_TRUE(isAttributeQuery(text));
  }
}

TEST(QueryParser, AnythingElseIsAQueryOfWords) {
  for (const char* text :
       {"budget", "from:<ada@example.org>", "Ada <ada@example.org>", "a=b", "\"a == b\"", "x <",
        "<5", "C&A", "a|b", "\"&&\"", "-> 5", "!important"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(isAttributeQuery(text));
  }
}

TEST(QueryParser, WhatIsBeyondTheLimitsIsAFault) {
  const auto fails = [](const std::string& text) {
    try {
      parseQuery(text);
    } catch (const QueryFault&) {
      return true;
    }
    return false;
  };
  const auto repeated = [](std::size_t count, const std::string& text) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all += text;
    return all;
  };
  EXPECT_TRUE(fails(std::string(kLongestQuery + 1, 'a')));
  EXPECT_FALSE(fails(std::string(kLongestQuery, 'a')));
  EXPECT_FALSE(fails(repeated(kMostTerms, "a ")));
  EXPECT_TRUE(fails(repeated(kMostTerms + 1, "a ")));
  EXPECT_TRUE(fails(repeated(kMostTerms + 1, "from:\"a\" ")));
  EXPECT_TRUE(fails("a == 1" + repeated(kMostTerms, "&&a==1")));
  EXPECT_FALSE(fails(repeated(kDeepestQuery, "(") + "a" + repeated(kDeepestQuery, ")")));
  EXPECT_TRUE(fails(repeated(kDeepestQuery + 1, "(") + "a" + repeated(kDeepestQuery + 1, ")")));
  EXPECT_TRUE(fails(repeated(kLongestQuery, "(")));
  EXPECT_TRUE(fails(repeated(kLongestQuery - 1, "-") + "a"));
  EXPECT_TRUE(fails(repeated(kLongestQuery / 4, "NOT ")));
  EXPECT_TRUE(fails("a==1&&" + repeated(kLongestQuery - 20, "!") + "a==1"));
  EXPECT_TRUE(fails("a==1&&" + repeated(kLongestQuery - 20, "(")));
}

TEST(QueryParser, AnEmptyQueryIsAFault) {
  for (const std::string text : {"", " ", "\t\n"}) {
    try {
      parseQuery(text);
      ADD_FAILURE() << "no fault";
    } catch (const QueryFault& fault) {
      EXPECT_LE(fault.begin + fault.length, text.size()) << "the place lies in the query";
    }
  }
}

/// The correction of a query that means nothing.
std::string corrected(const std::string& text) {
  try {
    parseQuery(text);
  } catch (const QueryFault& fault) {
    return fault.correction;
  }
  return "no fault";
}

TEST(QueryParser, ACorrectionIsOfAllFaultsAndIsCorrect) {
  EXPECT_EQ(corrected("form:ada is:unred"), "from:ada is:unread");
  EXPECT_EQ(corrected("a && b"), "kMDItemTextContent == \"a\" && kMDItemTextContent == \"b\"");
  EXPECT_EQ(corrected("(form:ada"), "(from:ada)");
  EXPECT_EQ(corrected("\""), "") << "empty quotes would be a fault, too";
  EXPECT_EQ(corrected("form:ada after:nonsense"), "");
}

}  // namespace
}  // namespace kbx
