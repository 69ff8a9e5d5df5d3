#include "mail/Attributes.h"

#include <gtest/gtest.h>

#include "platform/objects/NSNumber.h"
#include "tests/mail/Messages.h"

namespace kbx {
namespace {

struct Row {
  std::string name, value;
};

void expectAttributes(std::string_view message, std::string_view list, std::vector<Row> rows) {
  auto attributes = attributesOf(message, list);
  for (const Row& row : rows)
    EXPECT_EQ(shown(attributes->objectForKey(string(row.name))), row.value) << row.name;
}

constexpr std::string_view kMessage =
    "Received: from b by c; Wed, 10 Jan 2024 15:02:49 +0000\n"
    "Received: from a by b; Wed, 10 Jan 2024 15:02:48 +0000\n"
    "Date: Wed, 10 Jan 2024 15:02:47 +0000\n"
    "From: Ada <ada@x.org>, bob@x.org\n"
    "Sender: Clerk <clerk@x.org>\n"
    "Reply-To: desk@x.org\n"
    "To: Carl <carl@x.org>\n"
    "Cc: Dora <dora@x.org>, emil@x.org\n"
    "Bcc: Fay <fay@x.org>\n"
    "Subject: =?utf-8?q?caf=C3=A9?=\n"
    "Message-ID: <one@x.org>\n"
    "In-Reply-To: <zero@x.org>\n"
    "References: <minus@x.org>\n <zero@x.org>\n"
    "Keywords: tide, =?utf-8?q?caf=C3=A9?=\n"
    "Content-Language: en, fr\n"
    "X-Mailer: Quill 1.0\n"
    "List-Id: Harbour news <news.x.org>\n"
    "X-Priority: 1\n"
    "Content-Type: multipart/mixed; boundary=b\n"
    "\n"
    "--b\n\nhello\n"
    "--b\nContent-Type: application/pdf\nContent-Disposition: attachment; filename=a.pdf\n\nx\n"
    "--b\nContent-Type: application/octet-stream; name=b.PNG\n\nx\n"
    "--b\nContent-Type: x/y; name=c\n\nx\n"
    "--b--\n";

TEST(Attributes, TellEverythingThatAMessageSays) {
  expectAttributes(
      kMessage, kEmptyList,
      {{"kMDItemSubject", "café"},
       {"kMDItemDisplayName", "café"},
       {"kMDItemAuthors", "Ada|bob@x.org"},
       {"kMDItemAuthorEmailAddresses", "ada@x.org|bob@x.org"},
       {"kMDItemRecipients", "Carl|Dora|emil@x.org|Fay"},
       {"kMDItemRecipientEmailAddresses", "carl@x.org|dora@x.org|emil@x.org|fay@x.org"},
       {"kMDItemPrimaryRecipientEmailAddresses", "carl@x.org"},
       {"kMDItemAdditionalRecipientEmailAddresses", "dora@x.org|emil@x.org"},
       {"kMDItemHiddenAdditionalRecipientEmailAddresses", "fay@x.org"},
       {"kMDItemContentCreationDate", "2024-01-10 15:02:47 +0000"},
       {"kMDItemContentModificationDate", "2024-01-10 15:02:47 +0000"},
       {"com_apple_mail_dateSent", "2024-01-10 15:02:47 +0000"},
       {"com_apple_mail_dateReceived", "2024-01-10 15:02:49 +0000"},
       {"kMDItemIdentifier", "one@x.org"},
       {"kMDItemKeywords", "tide|café"},
       {"kMDItemLanguages", "en|fr"},
       {"kMDItemCreator", "Quill 1.0"},
       {"kMDItemKind", "Mail Message"},
       {"kMDItemContentType", "com.apple.mail.emlx"},
       {"kMDItemAttachmentNames", "a.pdf|b.PNG|c"},
       {"kMDItemAttachmentTypes", "com.adobe.pdf|public.png|public.data"},
       {"kMDItemTextContent", "hello\n"},
       {"com_apple_mail_priority", "1"},
       {"org_ferncase_mail_inReplyTo", "zero@x.org"},
       {"org_ferncase_mail_references", "minus@x.org|zero@x.org"},
       {"org_ferncase_mail_listID", "Harbour news <news.x.org>"},
       {"org_ferncase_mail_replyTo", "desk@x.org"},
       {"org_ferncase_mail_sender", "clerk@x.org"},
       {"org_ferncase_mail_size", std::to_string(kMessage.size())},
       {"org_ferncase_mail_hasAttachment", "1"},
       {"org_ferncase_mail_signed", "0"},
       {"org_ferncase_mail_encrypted", "0"}});
}

TEST(Attributes, OfAnEmptyMessageAreWhatIsKnownOfEveryMessage) {
  auto attributes = attributesOf("");
  std::vector<std::string> names;
  for (const auto& entry : *attributes) names.push_back(text(entry.key));
  EXPECT_EQ(names,
            (std::vector<std::string>{"kMDItemKind", "kMDItemContentType", "org_ferncase_mail_size",
                                      "org_ferncase_mail_hasAttachment", "org_ferncase_mail_signed",
                                      "org_ferncase_mail_encrypted"}));
}

TEST(Attributes, TheClientsListTellsStateAndDate) {
  expectAttributes("Subject: a\n\nb\n",
                   "<plist version=\"1.0\"><dict><key>flags</key><integer>8590195729</integer>"
                   "<key>date-received</key><real>1704898967</real></dict></plist>",
                   {{"com_apple_mail_read", "1"},
                    {"com_apple_mail_flagged", "1"},
                    {"com_apple_mail_repliedTo", "0"},
                    {"com_apple_mail_dateReceived", "2024-01-10 15:02:47 +0000"},
                    {"com_apple_mail_dateSent", "(null)"},
                    {"kMDItemContentCreationDate", "2024-01-10 15:02:47 +0000"}});
}

TEST(Attributes, TruthValuesAreBooleans) {
  auto attributes = attributesOf(
      "a",
      "<plist version=\"1.0\"><dict><key>flags</key><integer>16777217</integer></dict></plist>");
  for (NSString* name : {"com_apple_mail_read"_ns, "com_apple_mail_flagged"_ns,
                         "kMDItemIsLikelyJunk"_ns, "org_ferncase_mail_signed"_ns}) {
    auto* value = cast<NSNumber>(attributes->objectForKey(name));
    ASSERT_TRUE(value) << text(name);
    EXPECT_TRUE(value->isBoolean()) << text(name);
  }
}

TEST(Attributes, TheDateOfArrivalIsTheTransportsElseTheSenders) {
  EXPECT_EQ(attribute("Date: Wed, 10 Jan 2024 15:02:47 +0000\n\n", "com_apple_mail_dateReceived"),
            "2024-01-10 15:02:47 +0000");
  EXPECT_EQ(attribute("Received: from a; nonsense\nDate: Wed, 10 Jan 2024 15:02:47 +0000\n\n",
                      "com_apple_mail_dateReceived"),
            "2024-01-10 15:02:47 +0000");
  EXPECT_EQ(attribute("Received: by a with id 7\nReceived: by b; nonsense\n"
                      "Received: by c; Wed, 10 Jan 2024 15:02:48 +0000\n"
                      "Received: by d; Wed, 10 Jan 2024 15:02:47 +0000\n\n",
                      "com_apple_mail_dateReceived"),
            "2024-01-10 15:02:48 +0000");
}

TEST(Attributes, TheFirstOfTwoFieldsWins) {
  EXPECT_EQ(attribute("Subject: one\nSubject: two\n\n", "kMDItemSubject"), "one");
  EXPECT_EQ(attribute("To: a@x\nTo: b@x\n\n", "kMDItemRecipients"), "a@x");
}

TEST(Attributes, TheAgentOfNewsIsTheCreatorToo) {
  EXPECT_EQ(attribute("User-Agent: Quill\n\n", "kMDItemCreator"), "Quill");
}

TEST(Attributes, AGivenContentTypeIsKept) {
  TemporaryFolder folder;
  auto attributes = NSMutableDictionary::dictionary();
  ASSERT_TRUE(importMessage(folder.write("m", emlx("a: b\n\n")), "x.y"_ns, attributes, nullptr));
  EXPECT_EQ(text(attributes->objectForKey("kMDItemContentType"_ns)), "x.y");
}

TEST(Attributes, OfAMissingFileAreNone) {
  TemporaryFolder folder;
  auto attributes = NSMutableDictionary::dictionary();
  EXPECT_FALSE(importMessage(folder.url("missing"), nullptr, attributes, nullptr));
  EXPECT_EQ(attributes->count(), 0u);
}

}  // namespace
}  // namespace kbx
