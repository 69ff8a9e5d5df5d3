#include "host/index/RowMaker.h"

#include <gtest/gtest.h>

#include "host/store/MessageBytes.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using namespace std::string_literals;

constexpr HashKey kKey{1, 2};

std::string bytesOfMessage(const StoredMessage& message) {
  std::string bytes;
  appendMessage(bytes, message);
  return bytes;
}

/// A row with something in every column, some of it odd.
StoredMessage fullMessage() {
  StoredMessage message;
  message.subject = "";
  message.sender = "Jörg <j@example.org>";
  message.recipient = "a\0b"s;
  message.cc = std::string(100'000, 'c');
  message.bcc = "日本";
  message.body = "body";
  message.attachment = "a.pdf, b.pdf";
  message.list = "list";
  message.date = -0.5;
  message.received = 1e300;
  message.isRead = true;
  message.isFlagged = false;
  message.isReplied = true;
  message.isJunk = false;
  message.hasAttachment = true;
  message.messageId = "<1@example.org>";
  message.size = INT64_MIN;
  message.attributes = "\xFF\0\xFE"s;
  return message;
}

TEST(MessageBytes, ARowComesBackAsItWas) {
  StoredMessage sparse;
  sparse.isRead = false;
  sparse.body = "body alone";
  for (const StoredMessage& message : {fullMessage(), StoredMessage(), sparse}) {
    const std::string bytes = bytesOfMessage(message) + "what follows";
    std::string_view left = bytes;
    const auto back = takeMessage(left);
    ASSERT_TRUE(back);
    EXPECT_TRUE(*back == message);
    EXPECT_EQ(left, "what follows");
  }
}

TEST(MessageBytes, CutBytesAreNoRow) {
  StoredMessage message = fullMessage();
  message.cc = "cc";
  const std::string bytes = bytesOfMessage(message);
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    std::string_view cut = std::string_view(bytes).substr(0, length);
    EXPECT_FALSE(takeMessage(cut)) << length;
  }
}

TEST(MessageBytes, TextsThatAreNoUTF8AndFlagsThatAreNoneAreRefused) {
  StoredMessage message;
  message.list = "\xC3(";
  const std::string text = bytesOfMessage(message);
  std::string_view left = text;
  EXPECT_FALSE(takeMessage(left));

  message.list = std::nullopt;
  message.isRead = true;
  std::string flag = bytesOfMessage(message);
  flag[flag.rfind('\1')] = '\2';
  left = flag;
  EXPECT_FALSE(takeMessage(left));
}

TEST(MessageBytes, ALengthThatReachesBehindTheEndTakesNoMemory) {
  StoredMessage message;
  message.subject = "subject";
  std::string bytes = bytesOfMessage(message);
  bytes.replace(1, 8, 8, '\xFF');
  std::string_view left = bytes;
  EXPECT_FALSE(takeMessage(left));
}

TEST(RowMaker, MakesTheRowThatTheStoreMakesAndTheHashOfTheContent) {
  const TemporaryFolder folder;
  folder.write("a.eml", "content");
  const std::string path = (folder / "a.eml").string();
  const Ref<NSArray> odd = NSArray::arrayWithObjects({"not"_ns, "a text"_ns});
  const Ref<NSDate> sent = NSDate::dateWithTimeIntervalSince1970(1.5);
  const Ref<NSNumber> isRead = NSNumber::numberWithBool(true);
  const Ref<NSString> alone = NSString::stringByTakingUTF16(u"lone \xD800 surrogate");
  const Ref<NSDictionary> attributes =
      NSDictionary::dictionaryWithPairs({{"kMDItemTextContent"_ns, alone},
                                         {"kMDItemSubject"_ns, odd},
                                         {"com_apple_mail_dateSent"_ns, sent},
                                         {"com_apple_mail_read"_ns, isRead}});
  RowMaker maker(kKey);
  maker.begin(path);
  Ref<NSError> error;
  const auto row = madeRowIn(maker.make(attributes, &error).value_or(""));
  ASSERT_TRUE(row);
  EXPECT_TRUE(row->message == *storedMessage(attributes, &error));
  EXPECT_EQ(row->hash, contentHashOf(path, kKey, nullptr));
}

TEST(RowMaker, HashesBeforeTheImport) {
  const TemporaryFolder folder;
  folder.write("a.eml", "before");
  const std::string path = (folder / "a.eml").string();
  const auto before = contentHashOf(path, kKey, nullptr);
  RowMaker maker(kKey);
  maker.begin(path);
  folder.write("a.eml", "after!");
  const auto made = maker.make(NSDictionary::dictionary(), nullptr);
  EXPECT_EQ(madeRowIn(made.value_or(""))->hash, before);
}

TEST(RowMaker, WhatCannotBeReadHasNoHashAndNotTheOneBefore) {
  const TemporaryFolder folder;
  folder.write("a.eml", "content");
  RowMaker maker(kKey);
  maker.begin((folder / "a.eml").string());
  maker.begin((folder / "none.eml").string());
  const auto row = madeRowIn(maker.make(NSDictionary::dictionary(), nullptr).value_or(""));
  ASSERT_TRUE(row);
  EXPECT_FALSE(row->hash);
}

TEST(RowMaker, AttributesThatCannotBeStoredAreAnError) {
  const Ref<NSError> misplaced = NSError::errorWithDomain("d"_ns, 1, nullptr);
  Ref<NSError> error;
  RowMaker maker(kKey);
  EXPECT_FALSE(maker.make(NSDictionary::dictionaryWithPairs({{"key"_ns, misplaced}}), &error));
  EXPECT_TRUE(error);
}

TEST(RowMaker, OtherBytesAreNoRow) {
  RowMaker maker(kKey);
  const std::string good = *maker.make(NSDictionary::dictionary(), nullptr);
  ASSERT_TRUE(madeRowIn(good));
  for (const std::string& bytes :
       {std::string(), good + "more", good.substr(1), "\x03" + good.substr(1), "\x08hash"s,
        "\x09" + std::string(8, 'h')})
    EXPECT_FALSE(madeRowIn(bytes)) << bytes.size();
}

}  // namespace
}  // namespace kbx
