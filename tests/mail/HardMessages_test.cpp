// Messages that are made to be hard: each is imported with nothing lost, within time and memory in
// proportion to its size.
#include <gtest/gtest.h>

#include <ctime>

#include "platform/text/Base64.h"
#include "tests/mail/Messages.h"

namespace kbx {
namespace {

/// CPU seconds of this process.
double cpuSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

std::string numbered(std::string_view start, std::string_view end, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) ((text += start) += std::to_string(i)) += end;
  return text;
}

/// Imports a message; what an attribute ends in shows that the import came to the message's end.
void expectEnd(std::string_view message, std::string_view name, std::string_view end) {
  const double before = cpuSeconds();
  const std::string value = attribute(message, name);
  // Ten times what it takes on a slow machine without optimisation; quadratic work takes minutes.
  EXPECT_LT(cpuSeconds() - before, 20);
  EXPECT_TRUE(value.ends_with(end)) << value.size() << " " << value.substr(0, 100);
}

const std::string kMixed = "Content-Type: multipart/mixed; boundary=b\n\n";

TEST(HardMessages, ALargeAttachment) {
  const std::string body = repeated(std::string(76, 'A') + "\n", 300000);
  const std::string message = kMixed +
                              "--b\n\nplanted\n--b\nContent-Type: a/b; name=planted.bin\n"
                              "Content-Transfer-Encoding: base64\n\n" +
                              body + "--b--\n";
  expectEnd(message, "kMDItemTextContent", "planted\n");
  expectEnd(message, "kMDItemAttachmentNames", "planted.bin");
}

TEST(HardMessages, ALineOfBase64) {
  const std::string body = base64FromBytes(repeated("harbour ledger ", 1000000) + "planted");
  expectEnd("Content-Transfer-Encoding: base64\n\n" + body + "\n", "kMDItemTextContent", "planted");
}

TEST(HardMessages, ManyEncodedWords) {
  expectEnd("Subject: " + numbered("=?utf-8?q?w", "?=\n ", 20000) + "planted\n\n", "kMDItemSubject",
            "planted");
}

TEST(HardMessages, ALongHeader) {
  expectEnd("X-Long: " + std::string(10000000, 'x') + "\nTo: planted@x\n\n", "kMDItemRecipients",
            "planted@x");
  expectEnd(numbered("X-", ": y\n", 1000000) + "To: planted@x\n\n", "kMDItemRecipients",
            "planted@x");
}

TEST(HardMessages, ManyParts) {
  expectEnd(kMixed + numbered("--b\n\nw", "\n", 100000) + "--b\n\nplanted\n--b--\n",
            "kMDItemTextContent", "planted\n");
  expectEnd("Content-Type: multipart/alternative; boundary=b\n\n" +
                numbered("--b\n\nw", "\n", 100000) + "--b--\n",
            "kMDItemTextContent", "w99999\n");
}

TEST(HardMessages, ManyReferencesAndRecipients) {
  expectEnd("References: " + numbered("<r", "@x>\n ", 100000) + "<planted@x>\n\n",
            "org_ferncase_mail_references", "planted@x");
  expectEnd("To: " + numbered("\"N\" <r", "@x>,\n ", 50000) + "planted@x\n\n",
            "kMDItemRecipientEmailAddresses", "planted@x");
}

TEST(HardMessages, DeepMessagesAndParts) {
  expectEnd(repeated("Content-Type: message/rfc822\n\n", 500) + "Subject: x\n\nplanted\n",
            "kMDItemTextContent", "planted\n");
  std::string parts;
  for (int i = 0; i < 2000; ++i)
    parts += "Content-Type: multipart/mixed; boundary=b" + std::to_string(i) + "\n\n--b" +
             std::to_string(i) + "\n";
  expectEnd(parts + "\nplanted\n", "kMDItemTextContent", "planted\n");
  // Every line might be a boundary of 2000 open containers.
  expectEnd(parts + "\n" + repeated("--\n", 300000) + "planted\n", "kMDItemTextContent",
            "planted\n");
}

TEST(HardMessages, AlternativesWithinEachOtherCopyTheirTextAFewTimes) {
  std::string message;
  for (int i = 0; i < 500; ++i)
    message += "Content-Type: multipart/alternative; boundary=b" + std::to_string(i) + "\n\n--b" +
               std::to_string(i) + "\n\nx\n--b" + std::to_string(i) + "\n";
  expectEnd(
      message + "Content-Type: text/html\n\n" + repeated("<p>word</p>\n", 100000) + "planted\n",
      "kMDItemHTMLContent", "planted\n");
}

TEST(HardMessages, UnknownCharsetsInEveryPart) {
  expectEnd(kMixed + repeated("--b\nContent-Type: text/plain; charset=x\n\n\xE4\xF6 w\n", 20000) +
                "--b\n\nplanted\n--b--\n",
            "kMDItemTextContent", "planted\n");
}

}  // namespace
}  // namespace kbx
