#include "host/search/AttributeQuery.h"

#include "tests/support/QueryTest.h"

namespace kbx {
namespace {

using AttributeQueryTest = QueryTest<parseAttributeQuery>;

TEST_F(AttributeQueryTest, ComparisonsMakeATree) {
  struct Case {
    const char *text, *tree;
  };
  for (auto [text, expected] : {Case{"a == \"x\"", "a == \"x\""},
                                {"a==\"x*\"cd", "a == \"x*\"cd"},
                                {"a ==[wc] 'x'", "a == \"x\"cw"},
                                {"a == x", "a == \"x\""},
                                {"a != \"x\"", "(not a == \"x\")"},
                                {"* == \"x\"", "* == \"x\""},
                                {"a < 5", "a < 5"},
                                {"a<=-1.5e3", "a <= -1.5e3"},
                                {"a > 5 && b >= 6", "(and a > 5 b >= 6)"},
                                {"a == 1 || b == 2 && c == 3", "(or a == 1 (and b == 2 c == 3))"},
                                {"(a == 1 || b == 2) && c == 3", "(and (or a == 1 b == 2) c == 3)"},
                                {"!a == 1", "(not a == 1)"},
                                {"!(a == 1 && !b == 2)", "(not (and a == 1 (not b == 2)))"},
                                {"InRange(a, 1, 2)", "a in 1 2"},
                                {"inRange(a,1,2)", "a in 1 2"},
                                {"a == \"\\\"\"", "a == \"\\\"\""},
                                {"a == $time.now", "a == @1715952600"},
                                {"a == $time.now(-3600)", "a == @1715949000"},
                                {"a == $time.today", "a == @1715904000"},
                                {"a == $time.today(-1)", "a == @1715817600"},
                                {"a == $time.yesterday", "a == @1715817600"},
                                {"a == $time.this_week", "a == @1715558400"},
                                {"a == $time.this_week(-1)", "a == @1714953600"},
                                {"a == $time.this_month", "a == @1714521600"},
                                {"a == $time.this_year", "a == @1704067200"},
                                {"a == $time.iso(2024-05-17)", "a == @1715904000"},
                                {"a == $time.iso( 2024-05-17T13:30:00Z )", "a == @1715952600"},
                                {"kMDItemSubject == \"x\"", "kMDItemSubject == \"x\""},
                                {"org_example_thing == 1", "org_example_thing == 1"}}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(tree(text), expected);
  }
}

TEST_F(AttributeQueryTest, AWrongQueryHasAPlaceAndACorrection) {
  struct Case {
    const char *text, *fault;
  };
  for (auto [text, expected] :
       {Case{"kMDItemSubjct == \"x\"",
             "no message has an attribute of this name @0+13 -> kMDItemSubject == \"x\""},
        {"kMDItemsubject == \"x\"",
         "no message has an attribute of this name @0+14 -> kMDItemSubject == \"x\""},
        {"a == \"x", "this quote is never closed @5+1 -> a == \"x\""},
        {"a == \"x\"q", "the modifiers behind a text are c, d and w @5+4 -> "},
        {"a ==", "a value is missing here: \"text\", a number or $time.today @4+0 -> "},
        {"a == 1 &&", "a comparison is missing here @9+0 -> "},
        {"&& a == 1", "the name of an attribute is missing here @0+2 -> "},
        {"a = 1", "the operators are ==, !=, <, <=, > and >= @2+1 -> a == 1"},
        {"a == 1 & b == 2", "the operators are && and || @7+1 -> a == 1 && b == 2"},
        {"a == 1 b == 2", "&& or || is missing here @7+1 -> a == 1 && b == 2"},
        {"word && a == 1",
         "==, !=, <, <=, > or >= is missing behind the attribute @0+4 -> "
         "kMDItemTextContent == \"word\" && a == 1"},
        {"word a == 1",
         "==, !=, <, <=, > or >= is missing behind the attribute @0+4 -> "
         "kMDItemTextContent == \"word\" && a == 1"},
        {"(a == 1", "this parenthesis is never closed @0+1 -> (a == 1)"},
        {"a == 1)", "no parenthesis is open here @6+1 -> a == 1"},
        {"a == 1 && ()", "nothing stands in these parentheses @10+2 -> "},
        {"InRange(a, 1)", "InRange(ATTRIBUTE, SMALLEST, LARGEST) has this form @12+1 -> "},
        {"InRange a", "InRange(ATTRIBUTE, SMALLEST, LARGEST) has this form @0+7 -> "},
        {"a > $time.tody",
         "the variables are $time.now, .today, .yesterday, .this_week, .this_month, .this_year, "
         ".iso @4+10 -> a > $time.today"},
        {"a > $time.iso(2024-5-7)",
         "this is no date: 2024-05-17, 2024-05-17T14:30:00Z @14+8 -> a > $time.iso(2024-05-07)"},
        {"a > $time.iso(2024", "this parenthesis is never closed @13+1 -> a > $time.iso(2024)"},
        {"a > $time.now(x)", "a number is missing here @14+1 -> "},
        {"a ==[c \"x\"", "] is missing here @7+3 -> "}}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(fault(text), expected);
  }
}

}  // namespace
}  // namespace kbx
