#include "host/search/SearchPlan.h"

#include <gtest/gtest.h>

#include <string>

#include "host/search/QueryParser.h"

namespace kbx {
namespace {

/// "CONDITION | MATCH | MATCH"
std::string plan(std::string_view query) {
  const SearchPlan plan(parseQuery(query));
  std::string text = plan.condition();
  for (const std::string& match : plan.matches()) text += " | " + match;
  return text;
}

TEST(SearchPlan, WordsGoToTheIndexInOneQuestion) {
  struct Case {
    const char *query, *plan;
  };
  for (auto [query, expected] :
       {Case{"a", "ferncase_in(?1, m.id) | \"a\""},
        {"a b", "ferncase_in(?1, m.id) | (\"a\" AND \"b\")"},
        {"a -b", "ferncase_in(?1, m.id) | (\"a\" NOT \"b\")"},
        {"a -b -c", "ferncase_in(?1, m.id) | (\"a\" NOT (\"b\" OR \"c\"))"},
        {"-b", "NOT ferncase_in(?1, m.id) | \"b\""},
        {"-b -c", "NOT ferncase_in(?1, m.id) | (\"b\" OR \"c\")"},
        {"--b", "ferncase_in(?1, m.id) | \"b\""},
        {"a OR -b", "(ferncase_in(?2, m.id) OR NOT ferncase_in(?1, m.id)) | \"b\" | \"a\""},
        {"(a OR b) c*", "ferncase_in(?1, m.id) | ((\"a\" OR \"b\") AND \"c\" *)"},
        {"from:a", "ferncase_in(?1, m.id) | sender : \"a\""},
        {"\"a \"\"b\"", "ferncase_in(?1, m.id) | (\"a \" AND \"b\")"},
        {"kMDItemTextContent == \"a\\\"b\"", "ferncase_in(?1, m.id) | body : \"a\"\"b\""},
        {"is:read a", "(m.is_read IS 1 AND ferncase_in(?1, m.id)) | \"a\""},
        {"-is:read", "(m.is_read IS 1) IS NOT TRUE"},
        {"*", "1"},
        {"-*", "0"},
        {"a *", "ferncase_in(?1, m.id) | \"a\""},
        {"kMDItemAuthors == \"x\" && is_read == 1",
         "(ferncase_matches(?1, m.id) AND ferncase_matches(?2, m.id))"},
        {"kMDItemSubject == \"x\" && kMDItemTextContent == \"a\"",
         "(ferncase_in(?2, m.id) AND ferncase_text(?1, m.subject)) | body : \"a\""}}) {
    SCOPED_TRACE(query);
    EXPECT_EQ(plan(query), expected);
  }
}

TEST(SearchPlan, WhatEverythingFoundBelongsToIsKnown) {
  const auto required = [](std::string_view query) {
    return SearchPlan(parseQuery(query)).required().size();
  };
  EXPECT_EQ(required("a"), 1u);
  EXPECT_EQ(required("a is:read"), 1u);
  EXPECT_EQ(required("-a"), 0u);
  EXPECT_EQ(required("a OR is:read"), 0u);
  EXPECT_TRUE(SearchPlan(parseQuery("a b")).isMatchAlone());
  EXPECT_FALSE(SearchPlan(parseQuery("a is:read")).isMatchAlone());
  EXPECT_FALSE(SearchPlan(parseQuery("-a")).isMatchAlone());
}

TEST(SearchPlan, TheWordsToShowAreThoseThatAreWanted) {
  EXPECT_EQ(SearchPlan(parseQuery("a -b (c OR from:d) is:read")).words(),
            "(\"a\" OR \"c\" OR sender : \"d\")");
  EXPECT_EQ(SearchPlan(parseQuery("is:read")).words(), "");
}

}  // namespace
}  // namespace kbx
