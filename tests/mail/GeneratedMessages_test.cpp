// The generated mailbox, which other tests and the benchmarks stand on: it is the same every time,
// and each message is found by its mark.
#include "tests/generators/MailMix.h"

#include <gtest/gtest.h>

#include "tests/mail/Messages.h"

namespace kbx {
namespace {

constexpr std::size_t kCount = 300;

TEST(GeneratedMessages, AreTheSameForTheSameSeedOnly) {
  EXPECT_EQ(MailMix(1, kCount).message(7), MailMix(1, kCount).message(7));
  EXPECT_NE(MailMix(1, kCount).message(7), MailMix(2, kCount).message(7));
}

TEST(GeneratedMessages, AreFoundByTheirMark) {
  const MailMix mix(1, kCount);
  for (std::size_t i = 0; i < kCount; ++i) {
    auto attributes = attributesOf(mix.message(i));
    // Where only HTML came, the text is made from it by others.
    const std::string body = shown(attributes->objectForKey("kMDItemTextContent"_ns)) +
                             shown(attributes->objectForKey("kMDItemHTMLContent"_ns));
    EXPECT_NE(body.find(MailMix::mark(i)), std::string::npos) << "message " << i;
  }
}

TEST(GeneratedMessages, KnowWhoWroteWhenAndAboutWhat) {
  const MailMix mix(1, kCount);
  for (std::size_t i = 0; i < kCount; ++i) {
    auto attributes = attributesOf(mix.message(i));
    for (const char* name : {"kMDItemSubject", "kMDItemAuthorEmailAddresses", "kMDItemRecipients",
                             "com_apple_mail_dateSent", "kMDItemIdentifier"})
      EXPECT_TRUE(attributes->objectForKey(string(name))) << name << " of message " << i;
  }
}

}  // namespace
}  // namespace kbx
