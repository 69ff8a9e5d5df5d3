#include "host/store/StoredMessage.h"

#include <gtest/gtest.h>

#include "host/store/StoreErrors.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNumber.h"

namespace kbx {
namespace {

Ref<NSArray> list(std::initializer_list<const char*> texts) {
  NSArray::Elements elements;
  for (const char* text : texts) elements.push_back(NSString::stringWithUTF8(text));
  return NSArray::arrayWithElements(std::move(elements));
}

StoredMessage stored(std::initializer_list<NSDictionary::Pair> attributes) {
  Ref<NSError> error;
  auto message = storedMessage(NSDictionary::dictionaryWithPairs(attributes), &error);
  EXPECT_TRUE(message);
  return message.value_or(StoredMessage());
}

TEST(StoredMessage, WhatIsNotKnownIsAbsent) {
  const StoredMessage message = stored({});
  EXPECT_FALSE(message.subject || message.sender || message.recipient || message.cc ||
               message.bcc || message.body || message.attachment || message.list);
  EXPECT_FALSE(message.date || message.received || message.isRead || message.isFlagged ||
               message.isReplied || message.isJunk || message.hasAttachment || message.size ||
               message.messageId);
}

TEST(StoredMessage, NamesStandBeforeTheirAddresses) {
  const Ref<NSArray> authors = list({"Jane Doe", "joe@example.org"}),
                     authorAddresses = list({"jane@example.org", "joe@example.org"}),
                     names = list({"To One", "two@example.org", "Copy", "Hidden"}),
                     to = list({"one@example.org", "two@example.org"}),
                     cc = list({"copy@example.org"}), bcc = list({"hidden@example.org"});
  const StoredMessage message =
      stored({{"kMDItemAuthors"_ns, authors},
              {"kMDItemAuthorEmailAddresses"_ns, authorAddresses},
              {"kMDItemRecipients"_ns, names},
              {"kMDItemPrimaryRecipientEmailAddresses"_ns, to},
              {"kMDItemAdditionalRecipientEmailAddresses"_ns, cc},
              {"kMDItemHiddenAdditionalRecipientEmailAddresses"_ns, bcc}});
  EXPECT_EQ(message.sender, "Jane Doe <jane@example.org>, joe@example.org");
  EXPECT_EQ(message.recipient, "To One <one@example.org>, two@example.org");
  EXPECT_EQ(message.cc, "Copy <copy@example.org>");
  EXPECT_EQ(message.bcc, "Hidden <hidden@example.org>");
}

TEST(StoredMessage, NamesThatBelongToNoAddressAreKeptAllTheSame) {
  const Ref<NSArray> names = list({"Jane", "Nobody"}), addresses = list({"jane@example.org"});
  EXPECT_EQ(stored({{"kMDItemAuthors"_ns, names}}).sender, "Jane, Nobody");
  EXPECT_EQ(
      stored({{"kMDItemAuthors"_ns, names}, {"kMDItemAuthorEmailAddresses"_ns, addresses}}).sender,
      "Jane, Nobody, jane@example.org");
  EXPECT_EQ(stored({{"kMDItemAuthorEmailAddresses"_ns, addresses}}).sender, "jane@example.org");
  EXPECT_EQ(stored({{"kMDItemRecipients"_ns, names}}).recipient, "Jane, Nobody");
}

TEST(StoredMessage, StatesNumbersAndDatesHaveTheirColumns) {
  const Ref<NSDate> sent = NSDate::dateWithTimeIntervalSince1970(1e9),
                    received = NSDate::dateWithTimeIntervalSince1970(1e9 + 5);
  const Ref<NSNumber> yes = NSNumber::numberWithBool(true), no = NSNumber::numberWithBool(false),
                      size = NSNumber::numberWithInteger(1234);
  const Ref<NSArray> names = list({"a.pdf", "b.png"});
  const StoredMessage message = stored({{"com_apple_mail_dateSent"_ns, sent},
                                        {"com_apple_mail_dateReceived"_ns, received},
                                        {"com_apple_mail_read"_ns, no},
                                        {"com_apple_mail_flagged"_ns, yes},
                                        {"com_apple_mail_repliedTo"_ns, no},
                                        {"kMDItemIsLikelyJunk"_ns, yes},
                                        {"org_ferncase_mail_hasAttachment"_ns, yes},
                                        {"org_ferncase_mail_size"_ns, size},
                                        {"org_ferncase_mail_listID"_ns, "list.example.org"_ns},
                                        {"kMDItemIdentifier"_ns, "id@example.org"_ns},
                                        {"kMDItemAttachmentNames"_ns, names}});
  EXPECT_EQ(message.date, 1e9);
  EXPECT_EQ(message.received, 1e9 + 5);
  EXPECT_EQ(message.isRead, false);
  EXPECT_EQ(message.isFlagged, true);
  EXPECT_EQ(message.isReplied, false);
  EXPECT_EQ(message.isJunk, true);
  EXPECT_EQ(message.hasAttachment, true);
  EXPECT_EQ(message.size, 1234);
  EXPECT_EQ(message.list, "list.example.org");
  EXPECT_EQ(message.messageId, "id@example.org");
  EXPECT_EQ(message.attachment, "a.pdf, b.png");
}

TEST(StoredMessage, TheContentDateStandsInForAMissingOne) {
  const Ref<NSDate> created = NSDate::dateWithTimeIntervalSince1970(7);
  EXPECT_EQ(stored({{"kMDItemContentCreationDate"_ns, created}}).date, 7.0);
}

TEST(StoredMessage, ValuesOfAnotherKindComeBackToo) {
  Ref<NSError> error;
  const Ref<NSArray> odd = list({"not", "a", "text"});
  const Ref<NSDictionary> attributes = NSDictionary::dictionaryWithPairs(
      {{"kMDItemTextContent"_ns, odd}, {"kMDItemSubject"_ns, odd}, {"other"_ns, "x"_ns}});
  const auto message = storedMessage(attributes, &error);
  ASSERT_TRUE(message);
  EXPECT_FALSE(message->body || message->subject);
  EXPECT_TRUE(isEqual(importedAttributes(message->attributes, std::nullopt, &error), attributes));
}

TEST(StoredMessage, WhatIsNoPropertyListIsRefused) {
  Ref<NSError> error;
  const Ref<NSDictionary> attributes = NSDictionary::dictionaryWithPairs(
      {{"key"_ns, NSError::errorWithDomain("d"_ns, 1, nullptr).get()}});
  EXPECT_FALSE(storedMessage(attributes, &error));
  EXPECT_TRUE(error);
  EXPECT_FALSE(importedAttributes("damaged", std::nullopt, &error));
}

TEST(StoredMessage, PackedAttributesComeBackAndDamagedOnesAreRefused) {
  Ref<NSError> error;
  std::string text;
  for (int i = 0; i < 2000; ++i) text += std::to_string(i) + "<br>";
  const Ref<NSString> page = NSString::stringWithUTF8(text);
  const Ref<NSDictionary> attributes =
      NSDictionary::dictionaryWithPairs({{"kMDItemHTMLContent"_ns, page}});
  const auto message = storedMessage(attributes, &error);
  ASSERT_TRUE(message);
  ASSERT_LT(message->attributes.size(), text.size() / 2);
  EXPECT_TRUE(isEqual(importedAttributes(message->attributes, std::nullopt, &error), attributes));
  std::string damaged = message->attributes;
  damaged.back() ^= 1;
  EXPECT_FALSE(importedAttributes(damaged, std::nullopt, &error));
  EXPECT_EQ(error->code(), StoreDamagedError);
  EXPECT_EQ(error->localizedDescription()->lossyUTF8(), "The stored attributes are damaged.");
}

TEST(StoredMessage, TheIndexKnowsTheNameWithoutItsFolderAndState) {
  EXPECT_EQ(indexedFileName("/mail/Offer 7.eml"), "Offer 7.eml");
  EXPECT_EQ(indexedFileName("/m/cur/1700000000.M1P2.host:2,FS"), "1700000000.M1P2.host");
  EXPECT_EQ(indexedFileName("plain"), "plain");
}

}  // namespace
}  // namespace kbx
