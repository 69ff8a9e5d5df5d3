#include "mail/Addresses.h"

#include <gtest/gtest.h>

#include "tests/mail/Messages.h"

namespace kbx {
namespace {

/// "name<address>" for each mailbox.
std::string all(std::string_view raw) {
  TextDecoder decoder;
  std::string result;
  for (const Mailbox& one : mailboxes(raw, decoder))
    result += (result.empty() ? "" : "|") + one.name + "<" + one.address + ">";
  return result;
}

TEST(Addresses, HaveANameInFrontOrInAComment) {
  EXPECT_EQ(all("Ada Lovelace <ada@x.org>"), "Ada Lovelace<ada@x.org>");
  EXPECT_EQ(all("\"Lovelace, Ada\" <ada@x.org>"), "Lovelace, Ada<ada@x.org>");
  EXPECT_EQ(all("ada@x.org (Ada (the first) Lovelace)"), "Ada (the first) Lovelace<ada@x.org>");
  EXPECT_EQ(all("ada@x.org"), "<ada@x.org>");
  EXPECT_EQ(all("<ada@x.org>"), "<ada@x.org>");
  EXPECT_EQ(all("=?utf-8?q?Ren=C3=A9?= <r@x.org>"), "René<r@x.org>");
  EXPECT_EQ(all("\"=?utf-8?q?Ren=C3=A9?=\" <r@x.org>"), "René<r@x.org>");
}

TEST(Addresses, EncodedWordsMayHoldMarksOfAddresses) {
  EXPECT_EQ(all("=?utf-8?Q?Doe,_John?= <j@x.org>"), "Doe, John<j@x.org>");
  EXPECT_EQ(all("=?utf-8?Q?John_(Sales)?= <j@x.org>"), "John (Sales)<j@x.org>");
  EXPECT_EQ(all("=?utf-8?Q?a:b;c?= <j@x.org>, k@x.org"), "a:b;c<j@x.org>|<k@x.org>");
  EXPECT_EQ(all("=?utf-8?B?RG9l?= =?utf-8?Q?,_J?= <j@x.org>"), "Doe, J<j@x.org>");
  EXPECT_EQ(all("a=b <j@x.org>, =?utf-8?Q?c <k@x.org>"), "a=b<j@x.org>|=?utf-8?Q?c<k@x.org>");
}

TEST(Addresses, WhatIsNoPartOfAnAddressIsDropped) {
  EXPECT_EQ(all("Pete <pete(his account)@x.org(his host)>"), "Pete<pete@x.org>");
  EXPECT_EQ(all("Pete <mailto:pete@x.org>"), "Pete<pete@x.org>");
  EXPECT_EQ(all("Pete <pete@x.org>>, b@x"), "Pete<pete@x.org>|<b@x>");
}

TEST(Addresses, AreSeparatedByCommasAndSemicolons) {
  EXPECT_EQ(all("a@x, b@x;\n c@x,, ,"), "<a@x>|<b@x>|<c@x>");
}

TEST(Addresses, GroupsAreTheirMembers) {
  EXPECT_EQ(all("Friends: a@x, B <b@x>;, c@x"), "<a@x>|B<b@x>|<c@x>");
  EXPECT_EQ(all("undisclosed-recipients:;"), "");
}

TEST(Addresses, RoutesAndBlanksAroundDotsAreDropped) {
  EXPECT_EQ(all("<@a,@b:c@x.org>"), "<c@x.org>");
  EXPECT_EQ(all("john . doe @ x . org"), "<john.doe@x.org>");
}

TEST(Addresses, QuotedLocalPartsKeepTheirQuotes) {
  EXPECT_EQ(all("\"a b\"@x.org"), "<\"a b\"@x.org>");
}

TEST(Addresses, MissingMarksDoNotSwallowTheRest) {
  EXPECT_EQ(all("A <a@x, b@x"), "A<a@x>|<b@x>");
  EXPECT_EQ(all("\"A <a@x>, b@x"), "A<a@x>|<b@x>");
  EXPECT_EQ(all("A <b <a@x>"), "A <b<a@x>");
  EXPECT_EQ(all("<"), "");
}

TEST(Addresses, LiteralDomainsMayHoldColons) {
  EXPECT_EQ(all("a@[IPv6:::1], b@x"), "<a@[IPv6:::1]>|<b@x>");
}

TEST(Addresses, HostileValuesCostTimeInProportion) {
  TextDecoder decoder;
  EXPECT_EQ(mailboxes(repeated("\"N\" <a@b.c>, ", 50000), decoder).size(), 50000u);
  for (std::string_view piece :
       {"(", "<a,", "\"", "[", ":", "\\", "a@b ", "(\\", "=?", "=?a?q?", "<(", "<a>>"})
    mailboxes(repeated(piece, 500000), decoder);
}

}  // namespace
}  // namespace kbx
