#include "host/search/WordQuery.h"

#include "tests/support/QueryTest.h"

namespace kbx {
namespace {

using WordQueryTest = QueryTest<parseWordQuery>;

TEST_F(WordQueryTest, TermsMakeATree) {
  struct Case {
    const char *rule, *text, *tree;
  };
  for (auto [rule, text, expected] :
       {Case{"a word", "budget", "any:\"budget\""},
        {"words are all wanted", "a b  c", "(and any:\"a\" any:\"b\" any:\"c\")"},
        {"AND may be said", "a AND b", "(and any:\"a\" any:\"b\")"},
        {"small letters are words", "a or b and c not",
         "(and any:\"a\" any:\"or\" any:\"b\" any:\"and\" any:\"c\" any:\"not\")"},
        {"a phrase", "\"two words\"", "any:\"two words\""},
        {"typographic quotes", "“two words”", "any:\"two words\""},
        {"a phrase right behind a word", "a\"b c\"", "(and any:\"a\" any:\"b c\")"},
        {"a beginning", "bud*", "any:\"bud\"*"},
        {"a phrase and a beginning", "\"two wo\"*", "any:\"two wo\"*"},
        {"a star in quotes is text", "\"wo*\"", "any:\"wo*\""},
        {"everything", "*", "everything"},
        {"a minus", "-a", "(not any:\"a\")"},
        {"NOT", "a NOT b", "(and any:\"a\" (not any:\"b\"))"},
        {"a minus before a phrase", "-\"a b\"", "(not any:\"a b\")"},
        {"a minus before a group", "-(a b)", "(not (and any:\"a\" any:\"b\"))"},
        {"a minus before a field", "-from:a", "(not from:\"a\")"},
        {"a minus within a word", "a-b", "any:\"a-b\""},
        {"a minus alone", "a - b", "(and any:\"a\" any:\"-\" any:\"b\")"},
        {"twice not", "--a", "(not (not any:\"a\"))"},
        {"OR binds less than a blank", "a b OR c d",
         "(or (and any:\"a\" any:\"b\") (and any:\"c\" any:\"d\"))"},
        {"parentheses bind first", "a (b OR c)", "(and any:\"a\" (or any:\"b\" any:\"c\"))"},
        {"parentheses may be many", "((a))", "any:\"a\""},
        {"lists within lists are one", "a (b c) OR (d OR e)",
         "(or (and any:\"a\" any:\"b\" any:\"c\") any:\"d\" any:\"e\")"},
        {"parentheses end a word", "a(b)c", "(and any:\"a\" any:\"b\" any:\"c\")"},
        {"an address is a word", "ada@example.org", "any:\"ada@example.org\""},
        {"a location is a word", "http://example.org", "any:\"http://example.org\""},
        {"what people paste", "Re: plan", "(and any:\"Re:\" any:\"plan\")"},
        {"a time of day", "12:30", "any:\"12:30\""},
        {"names of programmers", "std::vector", "any:\"std::vector\""},
        {"wide blanks", "a\u3000b", "(and any:\"a\" any:\"b\")"},
        {"bytes that are no text", "caf\xE9", "any:\"caf\xE9\""}}) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(tree(text), expected);
  }
}

TEST_F(WordQueryTest, AFieldSaysWhereItsValueStands) {
  struct Case {
    const char *text, *tree;
  };
  for (auto [text, expected] :
       {Case{"from:ada", "from:\"ada\""},
        {"FROM:ada", "from:\"ada\""},
        {"from: ada", "from:\"ada\""},
        {"to:ada cc:bob bcc:eve", "(and to:\"ada\" cc:\"bob\" bcc:\"eve\")"},
        {"subject:plan* body:\"the engine\"", "(and subject:\"plan\"* body:\"the engine\")"},
        {"attachment:pdf file:a.eml list:dev",
         "(and attachment:\"pdf\" file:\"a.eml\" list:\"dev\")"},
        {"from:(ada bob)", "(and from:\"ada\" from:\"bob\")"},
        {"from:(ada OR \"charles b\"*) x", "(and (or from:\"ada\" from:\"charles b\"*) any:\"x\")"},
        {"subject:(a -b)", "(and subject:\"a\" (not subject:\"b\"))"},
        {"subject:-b", "subject:\"-b\""},
        {"subject:a:b", "subject:\"a:b\""},
        {"is:unread", "is:no-read"},
        {"is:read", "is:read"},
        {"is:Flagged", "is:flagged"},
        {"is:(replied OR junk)", "(or is:replied is:junk)"},
        {"has:attachment", "is:attachment"},
        {"has:\"attachment\"", "is:attachment"}}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(tree(text), expected);
  }
}

TEST_F(WordQueryTest, DatesAreSpans) {
  // 2024-05-01, 2024-06-01, 2024-05-17, 2024-05-18 at midnight
  EXPECT_EQ(tree("on:2024-05"), "date:1714521600..1717200000");
  EXPECT_EQ(tree("before:2024-05"), "date:-inf..1714521600");
  EXPECT_EQ(tree("after:2024-05"), "date:1714521600..inf");
  EXPECT_EQ(tree("on:today"), "date:1715904000..1715990400");
  EXPECT_EQ(tree("on:\"today\""), "date:1715904000..1715990400");
  EXPECT_EQ(tree("on:(today OR 2024-05)"),
            "(or date:1715904000..1715990400 date:1714521600..1717200000)");
}

TEST_F(WordQueryTest, AWrongQueryHasAPlaceAndACorrection) {
  struct Case {
    const char *text, *fault;
  };
  for (auto [text, expected] :
       {Case{"budget form:ada", "\"form:\" is no field @7+5 -> budget from:ada"},
        {"form: ada", "\"form:\" is no field @0+5 -> from: ada"},
        {"sender:ada", "\"sender:\" is no field @0+7 -> from:ada"},
        {"since:2024", "\"since:\" is no field @0+6 -> after:2024"},
        {"mailto:ada@x.org", "\"mailto:\" is no field @0+7 -> \"mailto:ada@x.org\""},
        {"a \"b c", "this quote is never closed @2+1 -> a \"b c\""},
        {"a “b", "this quote is never closed @2+3 -> a “b\""},
        {"from:\"ada", "this quote is never closed @5+1 -> from:\"ada\""},
        {"is:unred", "\"is:\" knows unread, read, flagged, replied, junk @3+5 -> is:unread"},
        {"is:starred x", "\"is:\" knows unread, read, flagged, replied, junk @3+7 -> is:flagged x"},
        {"is:unflagged", "\"is:\" knows unread, read, flagged, replied, junk @3+9 -> -is:flagged"},
        {"is:(unred)", "\"is:\" knows unread, read, flagged, replied, junk @4+5 -> "},
        {"has:attachments", "\"has:\" knows attachment @4+11 -> has:attachment"},
        {"has:unread", "\"has:\" knows attachment @4+6 -> is:unread"},
        {"OR", "OR needs a term on both sides @0+2 -> "},
        {"OR a", "OR needs a term on both sides @0+2 -> a"},
        {"a OR", "OR needs a term on both sides @2+2 -> a"},
        {"a OR OR b", "OR needs a term on both sides @5+2 -> a OR b"},
        {"(a OR) b", "OR needs a term on both sides @3+2 -> (a ) b"},
        {"AND a", "AND needs a term on both sides @0+3 -> a"},
        {"a AND", "AND needs a term on both sides @2+3 -> a"},
        {"a NOT", "NOT needs a term on its right @2+3 -> a"},
        {"a ()", "nothing stands in these parentheses @2+2 -> a"},
        {"from:( ) a", "nothing stands in these parentheses @5+3 -> a"},
        {"a \"\"", "nothing stands in these quotes @2+2 -> a"},
        {"(a", "this parenthesis is never closed @0+1 -> (a)"},
        {"a) b", "no parenthesis is open here @1+1 -> ab"},
        {"from:", "\"from:\" needs a value @0+5 -> "},
        {"from: OR a", "\"from:\" needs a value @0+5 -> OR a"},
        {"wo*rd", "* stands only at the end of a word @2+1 -> wo*"},
        {"*word", "* stands only at the end of a word @0+1 -> "},
        {"from:(to:x)", "a field within a field @6+3 -> from:(x)"},
        {"on:2024-5-7",
         "\"2024-5-7\" is no date: 2024, 2024-05, 2024-05-17, today, yesterday, lastweek, 3d @3+8 "
         "-> on:2024-05-07"}}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(fault(text), expected);
  }
}

}  // namespace
}  // namespace kbx
