// MailStore: a store in a temporary folder, filled by hand.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "host/store/Store.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

namespace kbx {

/// What a test says of a message; what is empty or absent is no attribute.
struct TestMail {
  std::string path;
  std::string subject = {}, body = {};
  std::vector<std::string> authors = {}, authorAddresses = {}, recipientAddresses = {};
  std::vector<std::string> attachments = {};
  std::string list = {};
  std::optional<double> date = {};  // seconds since 1970
  std::optional<bool> isRead = {}, isFlagged = {};
};

class MailStore {
 public:
  explicit MailStore(const std::vector<TestMail>& mails = {}) { add(mails); }

  std::string path() const { return (_folder / "mail.db").string(); }
  std::unique_ptr<StoreReader> reader() const {
    Ref<NSError> error;
    auto reader = StoreReader::open(path(), &error);
    EXPECT_TRUE(reader) << (error ? text(error->localizedDescription()) : "");
    return reader;
  }

  void add(const std::vector<TestMail>& mails) const {
    Ref<NSError> error;
    const auto writer = StoreWriter::open(path(), &error);
    ASSERT_TRUE(writer) << text(error->localizedDescription());
    ASSERT_TRUE(writer->begin(&error));
    for (const TestMail& mail : mails)
      ASSERT_TRUE(writer->put(mail.path, {}, "", attributesOf(mail), &error))
          << text(error->localizedDescription());
    ASSERT_TRUE(writer->commit(&error));
  }
  void remove(const std::string& mail) const {
    const auto writer = StoreWriter::open(path(), nullptr);
    ASSERT_TRUE(writer && writer->remove(mail, nullptr));
  }

  static Ref<NSDictionary> attributesOf(const TestMail& mail) {
    auto attributes = NSMutableDictionary::dictionary();
    const auto set = [&](NSString* name, NSObject* value) {
      attributes->setObjectForKey(value, name);
    };
    if (!mail.subject.empty()) set("kMDItemSubject"_ns, string(mail.subject));
    if (!mail.body.empty()) set("kMDItemTextContent"_ns, string(mail.body));
    if (!mail.authors.empty()) set("kMDItemAuthors"_ns, listOf(mail.authors));
    if (!mail.authorAddresses.empty())
      set("kMDItemAuthorEmailAddresses"_ns, listOf(mail.authorAddresses));
    if (!mail.recipientAddresses.empty()) {
      set("kMDItemPrimaryRecipientEmailAddresses"_ns, listOf(mail.recipientAddresses));
      set("kMDItemRecipients"_ns, listOf(mail.recipientAddresses));
    }
    if (!mail.attachments.empty()) set("kMDItemAttachmentNames"_ns, listOf(mail.attachments));
    set("org_ferncase_mail_hasAttachment"_ns, NSNumber::numberWithBool(!mail.attachments.empty()));
    if (!mail.list.empty()) set("org_ferncase_mail_listID"_ns, string(mail.list));
    if (mail.date) {
      const auto date = NSDate::dateWithTimeIntervalSince1970(*mail.date);
      set("com_apple_mail_dateSent"_ns, date);
      set("kMDItemContentCreationDate"_ns, date);
    }
    if (mail.isRead) set("com_apple_mail_read"_ns, NSNumber::numberWithBool(*mail.isRead));
    if (mail.isFlagged) set("com_apple_mail_flagged"_ns, NSNumber::numberWithBool(*mail.isFlagged));
    return attributes;
  }

 private:
  static Ref<NSArray> listOf(const std::vector<std::string>& texts) {
    auto list = NSMutableArray::array();
    for (const std::string& each : texts) list->addObject(string(each));
    return list;
  }

  TemporaryFolder _folder;
};

}  // namespace kbx
