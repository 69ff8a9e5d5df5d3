#include "mail/SignedContent.h"

#include <gtest/gtest.h>

#include "mail/TransferDecoder.h"
#include "platform/text/Base64.h"
#include "tests/mail/Messages.h"

namespace kbx {
namespace {

using namespace std::string_literals;

/// An element with a definite length.
std::string element(char tag, const std::string& contents) {
  const std::size_t length = contents.size();
  std::string head(1, tag);
  if (length < 0x80)
    head += static_cast<char>(length);
  else
    head += {static_cast<char>(0x82), static_cast<char>(length >> 8), static_cast<char>(length)};
  return head + contents;
}

const std::string kSigned = "\x06\x09\x2A\x86\x48\x86\xF7\x0D\x01\x07\x02"s;
const std::string kData = "\x06\x09\x2A\x86\x48\x86\xF7\x0D\x01\x07\x01"s;
const std::string kVersionAndDigests = "\x02\x01\x01\x31\x00"s;

std::string signedData(const std::string& part) {
  const std::string content = element('\x30', kData + element('\xA0', element('\x04', part)));
  return element('\x30', kSigned + element('\xA0', element('\x30', kVersionAndDigests + content)));
}

std::string contentIn(const std::string& bytes) {
  bool isEncrypted = false;
  return signedContent(bytes, &isEncrypted);
}

TEST(SignedContent, IsTheWrappedPart) {
  EXPECT_EQ(contentIn(signedData("Subject: x\n\nhello")), "Subject: x\n\nhello");
  const std::string much(20000, 'x');
  EXPECT_EQ(contentIn(signedData(much)), much);
}

TEST(SignedContent, PiecesOfAnIndefiniteLengthAreJoined) {
  const std::string bytes = "\x30\x80"s + kSigned + "\xA0\x80\x30\x80"s + kVersionAndDigests +
                            "\x30\x80"s + kData + "\xA0\x80\x24\x80"s + element('\x04', "hel") +
                            element('\x04', "lo") + "\0\0\0\0\0\0"s +
                            element('\xA0', "certificates");
  EXPECT_EQ(contentIn(bytes), "hello");
}

TEST(SignedContent, EnvelopedDataIsEncrypted) {
  bool isEncrypted = false;
  const std::string enveloped = "\x06\x09\x2A\x86\x48\x86\xF7\x0D\x01\x07\x03"s;
  EXPECT_EQ(signedContent(element('\x30', enveloped), &isEncrypted), "");
  EXPECT_TRUE(isEncrypted);
}

TEST(SignedContent, CutAndForeignBytesHaveNone) {
  const std::string whole = signedData("hello");
  for (std::size_t length = 0; length < whole.size() - 5; ++length)
    EXPECT_EQ(contentIn(whole.substr(0, length)), "") << length;
  EXPECT_EQ(contentIn("no structure"), "");
  EXPECT_EQ(contentIn("\x30\x88\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s), "");
}

TEST(SignedContent, ASignedMessageIsReadThroughItsWrapping) {
  const std::string part = "Content-Type: text/plain\r\n\r\nhello\r\n";
  MessageContent content = contentOf(
      "Content-Type: application/pkcs7-mime; smime-type=signed-data; name=smime.p7m\n"
      "Content-Transfer-Encoding: base64\n\n" +
      base64FromBytes(signedData(part)) + "\n");
  EXPECT_TRUE(content.isSigned);
  EXPECT_EQ(content.sections.take().plain, "hello\r\n");
}

}  // namespace
}  // namespace kbx
